#pragma once

#include <QString>
#include <QStringList>

// A job's private folder inside its save folder. Tools write their outputs
// and logs there, where no other program (and no second Kestrane) expects a
// file, so a name can never meet a user's file, a planted link or another
// run's output. Results leave it by rename only when they are complete,
// under a name that is free at that moment: nothing is ever overwritten.
class MCJobStaging
{
public:
    MCJobStaging() = default;
    ~MCJobStaging();
    MCJobStaging(const MCJobStaging &) = delete;
    MCJobStaging &operator=(const MCJobStaging &) = delete;

    // Creates the folder (mode 0700) in saveFolder; false with errorText.
    bool create(const QString &saveFolder);
    bool exists() const { return !m_path.isEmpty(); }
    QString path() const { return m_path; }
    QString saveFolder() const { return m_saveFolder; }
    QString errorText() const { return m_errorText; }
    bool contains(const QString &file) const;

    // Moves a file of the folder into the save folder under its own name,
    // or "NAME (2).EXT", "NAME (3).EXT", ... when that is taken. Answers the
    // final path, or "" (errorText set) when it could not be moved.
    QString publish(const QString &file);
    // The same, but a file already standing at the name is replaced, unless
    // it is one of the protected files (the same file under any name: a
    // hard link to a source) or not a plain file; then a free name is taken.
    QString publishReplacing(const QString &file, const QStringList &protectedFiles);
    // Whether a file of this folder would not get its own name in the save folder.
    bool nameIsTaken(const QString &file) const;
    // What "keep logs" keeps when the job ends: every file left in the
    // folder, or only the given logs, moved out; links to a source that a
    // tool read through stay behind. Answers the names they now have.
    QStringList publishKept(const QStringList &logs, bool logsOnly);
    // Removes the folder and all it holds.
    void remove();

    // The name a published file takes when wanted is taken: "movie.mkv.avi"
    // gives "movie.mkv (2).avi".
    static QString numberedName(const QString &fileName, int number);
    // Prefix of every staging folder, for finding those a crash left.
    static QString folderPrefix();

private:
    QString m_path;
    QString m_saveFolder;
    QString m_errorText;
};
