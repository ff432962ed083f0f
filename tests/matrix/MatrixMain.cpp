// The conversion matrix: generates the kinds of video people have, converts
// each with the choices a user makes through the real kestrane-cli, and
// judges every result. Prints the table in Markdown, as docs/formats.md
// shows it; fails on any FAILED cell.
//
//   conversion_matrix [--cli PATH] [--jobs N] [--only TEXT] [--keep]

#include "Matrix.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <atomic>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

namespace {

// Runs task(0) ... task(count - 1) on a few threads; the work is mostly
// waiting for the tools.
void runParallel(int workers, qsizetype count, const std::function<void(qsizetype)> &task)
{
    std::atomic<qsizetype> next{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < workers; ++i) {
        threads.emplace_back([&] {
            for (qsizetype item = next++; item < count; item = next++)
                task(item);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}

void print(const QString &text)
{
    std::fputs(text.toUtf8().constData(), stdout);
    std::fflush(stdout);
}

QList<PreparedSource> prepareSources(const QString &filter, const QString &dir, int workers, bool *allMade)
{
    QList<PreparedSource> prepared;
    for (const MatrixSource &source : MatrixSource::all()) {
        if (source.fileName.contains(filter, Qt::CaseInsensitive) || source.name.contains(filter, Qt::CaseInsensitive))
            prepared.append({source, {}, {}, {}, {}});
    }
    runParallel(workers, prepared.size(), [&](qsizetype i) {
        PreparedSource &item = prepared[i];
        item.path = generateSource(item.source, dir, &item.problem);
        if (!item.path.isEmpty()) {
            item.facts = probeMedia(item.path);
            item.decoded = decodeMedia(item.path);
        }
    });
    *allMade = true;
    for (const PreparedSource &item : std::as_const(prepared)) {
        if (item.path.isEmpty() || !item.facts.video.present || item.decoded.flash < 0 || item.decoded.soundStart < 0) {
            print(u"cannot make %1: %2\n"_s.arg(item.source.name, item.problem));
            *allMade = false;
        }
    }
    return prepared;
}

// The table in Markdown: "ok", "refused (n)", "FAILED (n)" or "-", with
// the numbered reasons below it (equal reasons share one number).
QString markdown(const QList<PreparedSource> &sources, const QList<MatrixChoice> &choices, const QList<Verdict> &verdicts)
{
    QStringList notes, headings;
    for (const MatrixChoice &choice : choices)
        headings << choice.heading;
    QString text = u"| source | %1 |\n|---|"_s.arg(headings.join(u" | "_s)) + u"---|"_s.repeated(choices.size()) + u'\n';
    for (qsizetype row = 0; row < sources.size(); ++row) {
        QStringList line{sources.at(row).source.name};
        for (qsizetype column = 0; column < choices.size(); ++column) {
            const Verdict &verdict = verdicts.at(row * choices.size() + column);
            if (verdict.outcome == Verdict::Outcome::Ok || verdict.outcome == Verdict::Outcome::NotApplicable) {
                line << (verdict.outcome == Verdict::Outcome::Ok ? u"ok"_s : u"-"_s);
                continue;
            }
            if (!notes.contains(verdict.detail))
                notes << verdict.detail;
            line << u"%1 (%2)"_s.arg(verdict.outcome == Verdict::Outcome::Refused ? u"refused"_s : u"FAILED"_s)
                        .arg(notes.indexOf(verdict.detail) + 1);
        }
        text += u"| %1 |\n"_s.arg(line.join(u" | "_s));
    }
    text += u'\n';
    for (qsizetype i = 0; i < notes.size(); ++i)
        text += u"%1. %2\n"_s.arg(i + 1).arg(notes.at(i));
    return text;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addOptions({
        {u"cli"_s, u"The kestrane-cli to drive."_s, u"path"_s, QCoreApplication::applicationDirPath() + u"/kestrane-cli"_s},
        {u"jobs"_s, u"Cells converted at once."_s, u"n"_s, u"3"_s},
        {u"only"_s, u"Only sources whose name contains this."_s, u"text"_s},
        {u"keep"_s, u"Keep the work folder and print where it is."_s},
    });
    parser.process(app);
    if (qEnvironmentVariableIsEmpty("KESTRANE_RESOURCES"))
        qputenv("KESTRANE_RESOURCES", KESTRANE_BUILD_RESOURCES);
    const int workers = std::max(1, parser.value(u"jobs"_s).toInt());

    QTemporaryDir work;
    work.setAutoRemove(!parser.isSet(u"keep"_s));
    if (parser.isSet(u"keep"_s))
        print(u"work folder: %1\n"_s.arg(work.path()));
    QElapsedTimer clock;
    clock.start();
    bool allMade = false;
    const QList<PreparedSource> sources = prepareSources(parser.value(u"only"_s), work.path(), std::min(workers, 2), &allMade);
    const QList<MatrixChoice> choices = MatrixChoice::all();
    QList<Verdict> verdicts(sources.size() * choices.size());
    runParallel(workers, verdicts.size(), [&](qsizetype cell) {
        const PreparedSource &source = sources.at(cell / choices.size());
        const MatrixChoice &choice = choices.at(cell % choices.size());
        if (!source.path.isEmpty() && choice.appliesTo(source.source))
            verdicts[cell] = runCell(source, choice, u"%1/cell-%2"_s.arg(work.path()).arg(cell), parser.value(u"cli"_s));
    });
    print(markdown(sources, choices, verdicts));
    print(u"%1 sources, %2 s\n"_s.arg(sources.size()).arg(clock.elapsed() / 1000));
    const bool failed = std::any_of(verdicts.cbegin(), verdicts.cend(),
                                    [](const Verdict &verdict) { return verdict.outcome == Verdict::Outcome::Failed; });
    return allMade && !failed ? 0 : 1;
}
