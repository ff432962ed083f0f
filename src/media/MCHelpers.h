#pragma once

#include <QString>
#include <QUrl>
#include <QVariantList>

// Option lists hold file locations (QUrl, written double-quoted) and texts
// (QString, written as they stand); anything else is skipped.
using MCOptionList = QVariantList;

// The base of Kestrane's working classes: tool location, the two shell
// runners, quoting and a few file and process tests.
class MCHelpers
{
public:
    MCHelpers() = default;
    virtual ~MCHelpers() = default;

    // The resource folder: $KESTRANE_RESOURCES, else the build tree's or the
    // installed folder next to the running executable.
    static QString resourceFolderPath();
    static QUrl urlOfApp(const QString &name);

    static QString doUnixCommand(const QString &head, const MCOptionList &options);
    static QString doShellScriptFor(const QUrl &tool, const MCOptionList &options);
    // The same, answering nothing once the tool has run timeLimitMs.
    static QString doShellScriptFor(const QUrl &tool, const MCOptionList &options, int timeLimitMs);

    static QString singleQuotedFormOf(const QString &text);
    static QString doubleQuotedFormOf(const QString &text);
    static bool isStringInteger(const QString &text);
    static bool processIsRunning(const QString &pid);
    static bool fileExistsAtURL(const QUrl &url);
    static bool directoryPathExistsFor(const QString &path);

    // The self-closing informational notice (one "OK" button, 10 seconds).
    static void showTimedNotice(const QString &message, const QString &informativeText,
                                double seconds = 10.0);

    // Helpers shared by the runners; public so tests can check composition.
    static QString commandFromOptions(const QString &head, const MCOptionList &options);
    static QString headForTool(const QUrl &tool, const MCOptionList &options);
    static QString decodeToolOutput(const QByteArray &bytes);
};
