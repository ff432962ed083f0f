#include "MCCommandLine.h"

#include "MCCliOptions.h"
#include "MCCliPresets.h"
#include "MCCliSession.h"
#include "MCInputFileCheck.h"
#include "MCJsonReport.h"
#include "MCTerminalText.h"
#include "MCVideoFile.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>

namespace {

void printOut(const QString &text)
{
    MCTerminalText::print(stdout, text);
}

void printError(const QString &text)
{
    MCTerminalText::print(stderr, text + QLatin1Char('\n'));
}

// JSON escapes control characters itself; its text is printed as it is.
void printJson(const QByteArray &json)
{
    std::fwrite(json.constData(), 1, static_cast<size_t>(json.size()), stdout);
    std::fflush(stdout);
}

} // namespace

MCCommandLine::MCCommandLine(QStringList arguments)
    : m_arguments(std::move(arguments))
{
}

int MCCommandLine::run()
{
    MCCliOptions options;
    if (const std::optional<QString> error = MCCliOptions::parse(m_arguments.mid(1), options)) {
        printError(QStringLiteral("kestrane-cli: %1\nTry 'kestrane-cli --help' for more information.").arg(*error));
        return 2;
    }
    if (options.help) {
        printOut(helpText());
        return 0;
    }
    if (options.version) {
        printOut(versionText());
        return 0;
    }
    if (options.command == QStringLiteral("inspect"))
        return inspect(options);
    if (options.command == QStringLiteral("presets"))
        return MCCliPresets(options).run();
    return MCCliSession(options).run();
}

int MCCommandLine::inspect(const MCCliOptions &options)
{
    int status = 0;
    QJsonArray files;
    for (const QString &path : options.files) {
        const QFileInfo info(path);
        if (const QString problem = MCInputFileCheck::problem(path); !problem.isEmpty()) {
            printError(QStringLiteral("kestrane-cli: %1: %2").arg(path, problem));
            status = 1;
            continue;
        }
        MCVideoFile file;
        const QString answer = file.initializeForURL(QUrl::fromLocalFile(info.absoluteFilePath()));
        if (answer != QStringLiteral("OK")) {
            printError(MCCliSession::loadFailureLine(info.fileName(), answer));
            status = 1;
            continue;
        }
        if (options.json)
            files.append(MCJsonReport::fileObject(file));
        else
            printOut(file.stringFromFileProperties());
    }
    if (options.json)
        printJson(QJsonDocument(files).toJson(QJsonDocument::Indented));
    return status;
}

QString MCCommandLine::versionText()
{
    return QStringLiteral("kestrane-cli (Kestrane) %1\n").arg(QCoreApplication::applicationVersion());
}

QString MCCommandLine::helpText()
{
    return QStringLiteral(
        "Usage: kestrane-cli COMMAND [OPTION]... FILE...\n"
        "  or:  kestrane-cli --resume [--settings FILE]\n"
        "Convert and edit video files with Kestrane's presets and jobs, without a window.\n"
        "\n"
        "Commands:\n"
        "  inspect FILE...           print each file's properties and tracks\n"
        "  convert FILE...           convert to an MPEG-4 AVI, an MKV or an MP4 (several files: a batch)\n"
        "  join FILE...              join AVI files, MKV files or MP4 files into one\n"
        "  split FILE                split an AVI, MKV or MP4 file by time or by size (MKV: duration)\n"
        "  extract FILE              extract tracks of an AVI, MKV or MP4 file into files of their own\n"
        "  remove-tracks FILE        copy an MKV or MP4 file without the tracks --tracks lists\n"
        "  add-audio FILE AUDIO...   add audio files as tracks of an AVI file\n"
        "  add-tracks FILE.mp4 FILE...\n"
        "                            add AAC or AC-3 audio and SRT or SUB subtitle files\n"
        "                            as tracks of an MP4 file\n"
        "  par FILE... --par W:H     set the pixel aspect ratio of MP4 files\n"
        "  remux FILE                copy an MKV file without header-removal compression\n"
        "  watch DIR                 convert every new movie put into DIR (or below it)\n"
        "                            with the presets, until interrupted\n"
        "  presets list | show NAME | remove NAME\n"
        "  presets add-settings NAME [convert options]\n"
        "  presets add-selection NAME [--audio-filter F]... [--subtitle-filter F]...\n"
        "                            the presets of the settings file, as the window's\n"
        "\n"
        "Options of inspect:\n"
        "      --json                one JSON object per file, with one per track\n"
        "\n"
        "Options of convert (--tracks, --selection-preset for extract; both presets for watch):\n"
        "      --selection-preset NAME   track-selection preset (default \"First Track\")\n"
        "      --settings-preset NAME    settings preset (default \"Manual\")\n"
        "      --tracks LIST         tracks to use, by position: 1,2,4\n"
        "      --to TARGET           avi (default), mkv or mp4\n"
        "      --device NAME         General, DivX DVD, PS3 or Xbox; into MP4 General,\n"
        "                            Apple TV 3, Apple TV 2, iPad 3/iPhone 4S,\n"
        "                            iPad (2 and Earlier), iPhone 4/iPod Touch (4G and Later),\n"
        "                            iPhone/iPod Touch (3G and Earlier), iPod, PS3 or Xbox\n"
        "      --video MODE          passthru, mpeg4 or mpeg4-2pass\n"
        "      --bitrate KBPS        video bit rate\n"
        "      --width PX            video width (never above the source's)\n"
        "      --audio MODE          passthru, mp3 or ac3; into MKV and MP4 passthru, aac, aac-5.1\n"
        "                            or ac3, for every audio track\n"
        "      --audio-bitrate KBPS  128, 160, 192, 224, 256, 320, 384, 448, 512 or 640\n"
        "      --stereo-copy         add a stereo copy of the audio track\n"
        "      --subtitles MODE      burn or extract; into MKV and MP4 mux or drop\n"
        "      --remux-header-removal yes|no\n"
        "                            answer the offer to remux an MKV file that uses\n"
        "                            header-removal compression (default no)\n"
        "\n"
        "Filters of presets add-selection (audio and subtitles alike):\n"
        "      none, all, a track number, or lang=NAME,codec=NAME[,channels=stereo|surround]\n"
        "\n"
        "Options of split:\n"
        "      --time HH:MM:SS-HH:MM:SS  keep this range\n"
        "      --size MB --pieces N      N pieces of MB megabytes\n"
        "      --duration SECONDS        pieces of this length (MKV files)\n"
        "\n"
        "Options of every command:\n"
        "      --settings FILE       use this settings file instead of the user's\n"
        "      --save-dir DIR        write results into DIR for this run\n"
        "      --overwrite           a result takes the place of a file of its name\n"
        "                            in the save folder (never of a source)\n"
        "      --dry-run             print what would be done and the tool commands;\n"
        "                            queue nothing, write nothing\n"
        "      --quiet               print only one line per finished job\n"
        "      --resume              run again the jobs a killed kestrane-cli or\n"
        "                            Kestrane left unfinished\n"
        "  -h, --help                show this help and exit\n"
        "      --version             show the version and exit\n"
        "\n"
        "Exit status: 0 when every job completed and wrote its output, 1 when a file\n"
        "or a job failed, 2 for bad usage, 128+N when stopped by signal N. watch ends\n"
        "with 0 when interrupted between jobs and every job completed.\n");
}
