// The conversion matrix: generates the kinds of video people have, converts
// each with the choices a user makes through the real kestrane-cli, and
// judges every result. Prints the table; fails on any FAILED cell.
//
//   conversion_matrix [--cli PATH] [--jobs N] [--only TEXT] [--markdown] [--keep]

#include "MatrixCell.h"
#include "MatrixTable.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
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
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

QList<PreparedSource> prepareSources(const QString &filter, const QString &dir, int workers, bool *allMade)
{
    QList<PreparedSource> prepared;
    for (const MatrixSource &source : MatrixSource::all()) {
        if (filter.isEmpty() || source.fileName.contains(filter, Qt::CaseInsensitive)
            || source.name.contains(filter, Qt::CaseInsensitive))
            prepared.append({source, {}, {}, {}});
    }
    std::vector<QString> problems(static_cast<size_t>(prepared.size()));
    runParallel(workers, prepared.size(), [&](qsizetype i) {
        PreparedSource &item = prepared[i];
        item.path = generateSource(item.source, dir, &problems[static_cast<size_t>(i)]);
        if (!item.path.isEmpty()) {
            item.facts = probeMedia(item.path);
            item.decoded = decodeMedia(item.path);
        }
    });
    *allMade = true;
    for (qsizetype i = 0; i < prepared.size(); ++i) {
        const PreparedSource &item = prepared.at(i);
        if (item.path.isEmpty() || !item.facts.video.present || item.decoded.flash < 0 || item.decoded.soundStart < 0) {
            print(QStringLiteral("cannot make %1: %2\n").arg(item.source.name, problems[static_cast<size_t>(i)]));
            *allMade = false;
        }
    }
    return prepared;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addOptions({
        {QStringLiteral("cli"), QStringLiteral("The kestrane-cli to drive."), QStringLiteral("path"),
         QCoreApplication::applicationDirPath() + QStringLiteral("/kestrane-cli")},
        {QStringLiteral("jobs"), QStringLiteral("Cells converted at once."), QStringLiteral("n"), QStringLiteral("3")},
        {QStringLiteral("only"), QStringLiteral("Only sources whose name contains this."), QStringLiteral("text")},
        {QStringLiteral("markdown"), QStringLiteral("Print the table as Markdown.")},
        {QStringLiteral("keep"), QStringLiteral("Keep the work folder and print where it is.")},
    });
    parser.process(app);
    if (qEnvironmentVariableIsEmpty("KESTRANE_RESOURCES"))
        qputenv("KESTRANE_RESOURCES", KESTRANE_BUILD_RESOURCES);
    const int workers = std::max(1, parser.value(QStringLiteral("jobs")).toInt());

    QTemporaryDir work;
    work.setAutoRemove(!parser.isSet(QStringLiteral("keep")));
    if (parser.isSet(QStringLiteral("keep")))
        print(QStringLiteral("work folder: %1\n").arg(work.path()));
    QElapsedTimer clock;
    clock.start();
    bool allMade = false;
    const QList<PreparedSource> sources =
        prepareSources(parser.value(QStringLiteral("only")), work.path(), std::min(workers, 2), &allMade);
    const QList<MatrixChoice> choices = MatrixChoice::all();

    QStringList rows;
    for (const PreparedSource &source : sources)
        rows << source.source.name;
    QStringList columns;
    for (const MatrixChoice &choice : choices)
        columns << choice.heading;
    MatrixTable table(rows, columns);

    const qsizetype cells = sources.size() * choices.size();
    runParallel(workers, cells, [&](qsizetype cell) {
        const qsizetype row = cell / choices.size();
        const qsizetype column = cell % choices.size();
        const PreparedSource &source = sources.at(row);
        const MatrixChoice &choice = choices.at(column);
        if (source.path.isEmpty() || !choice.appliesTo(source.source))
            return;
        const QString folder = QStringLiteral("%1/cell-%2-%3").arg(work.path()).arg(row).arg(column);
        const Verdict verdict = MatrixCell(source, choice, folder, parser.value(QStringLiteral("cli"))).run();
        table.set(row, column, verdict);
    });

    print(parser.isSet(QStringLiteral("markdown")) ? table.markdown() : table.plainText());
    print(QStringLiteral("%1 sources, %2 s\n").arg(sources.size()).arg(clock.elapsed() / 1000));
    return (allMade && table.failedCount() == 0) ? 0 : 1;
}
