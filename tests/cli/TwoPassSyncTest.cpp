#include "CliTestSupport.h"

#include <QRegularExpression>

namespace {

// When the white flash is seen, and when the beep is heard (seconds).
struct Cue
{
    double flash = -1;
    double beep = -1;
};

Cue cueOf(const QString &path)
{
    Cue cue;
    QString output;
    testsupport::run(QStringLiteral("ffmpeg -hide_banner -nostdin -i '%1' -map 0:v:0 "
                                    "-vf signalstats,metadata=print:key=lavfi.signalstats.YAVG -f null - 2>&1")
                         .arg(path),
                     &output);
    static const QRegularExpression frame(QStringLiteral("pts_time:([0-9.]+)[^\\n]*\\n[^\\n]*YAVG=([0-9.]+)"));
    for (auto match = frame.globalMatch(output); match.hasNext();) {
        const QRegularExpressionMatch m = match.next();
        if (m.captured(2).toDouble() > 128) {
            cue.flash = m.captured(1).toDouble();
            break;
        }
    }
    testsupport::run(QStringLiteral("ffmpeg -hide_banner -nostdin -i '%1' -map 0:a:0 -af silencedetect=n=-30dB:d=0.2 "
                                    "-f null - 2>&1 | grep -o 'silence_end: [0-9.]*' | head -1")
                         .arg(path),
                     &output);
    if (!output.isEmpty())
        cue.beep = output.section(QLatin1Char(' '), 1, 1).toDouble();
    return cue;
}

} // namespace

// Two passes must see the same pictures (the second aborted on sources
// whose timing MEncoder evens out by dropping or repeating pictures), and
// the result must keep picture and sound together.
TEST(TwoPassSync, TransportStreamAndVobKeepFlashAndBeepTogether)
{
    QTemporaryDir work;
    const QString settings = quietSettings(work.path());
    // A black picture that flashes white at 1.5 s, silence with a beep at 1.5 s.
    const QString inputs = QStringLiteral(
        "-f lavfi -i \"color=c=black:s=160x120:r=25:d=3,drawbox=c=white:t=fill:enable='between(t,1.5,1.58)'\" "
        "-f lavfi -i \"aevalsrc='if(between(t,1.5,1.8),sin(2*PI*880*t),0)':s=48000:d=3\" -ac 2 -c:v mpeg2video ");
    for (const auto &[name, audio] : {std::pair{QStringLiteral("cue.ts"), QStringLiteral("-c:a mp2")},
                                      std::pair{QStringLiteral("cue.vob"), QStringLiteral("-c:a ac3 -f vob")}}) {
        SCOPED_TRACE(name.toStdString());
        const QString source = testsupport::ffmpeg(work.path(), name, inputs + audio);
        const Cue original = cueOf(source);
        ASSERT_NEAR(original.flash, original.beep, 0.05);

        const CliResult result = runCli(QStringList{u"--settings"_s, settings, u"--save-dir"_s, work.path()}
                                        + words(u"--quiet convert --video mpeg4-2pass --bitrate 400 --audio mp3"_s)
                                        + QStringList{source});
        ASSERT_EQ(result.status, 0) << result.err.toStdString() << result.out.toStdString();
        const QString avi = source + QStringLiteral(".avi");
        ASSERT_TRUE(QFileInfo::exists(avi));
        const Cue converted = cueOf(avi);
        ASSERT_GE(converted.flash, 0);
        ASSERT_GE(converted.beep, 0);
        // Within two pictures at 25 per second.
        EXPECT_NEAR(converted.flash - converted.beep, original.flash - original.beep, 0.08);
    }
}
