#pragma once

#include "MatrixChoice.h"
#include "MediaProbe.h"

#include <QString>

// How one source and one choice ended.
struct Verdict
{
    enum class Outcome { Ok, Refused, Failed, NotApplicable };
    Outcome outcome = Outcome::NotApplicable;
    QString detail; // the refusal's reason, or what went wrong

    static Verdict ok() { return {Outcome::Ok, {}}; }
    static Verdict refused(const QString &why) { return {Outcome::Refused, why}; }
    static Verdict failed(const QString &why) { return {Outcome::Failed, why}; }
};

// A generated source with the facts its outputs are measured against.
struct PreparedSource
{
    MatrixSource source;
    QString path;
    MediaFacts facts;
    DecodedFacts decoded;
};

// Runs kestrane-cli convert for one cell in its own folder (its own
// settings file and save folder) and judges what it left.
class MatrixCell
{
public:
    MatrixCell(const PreparedSource &source, const MatrixChoice &choice, QString folder, QString cli);

    Verdict run() const;

private:
    Verdict judgeOutput() const;
    QString outputPath() const;
    QString checkStreams(const MediaFacts &out) const;
    QString checkDecoding(const DecodedFacts &decoded) const;
    QString checkSync(const DecodedFacts &decoded) const;
    QString checkExtractedSubtitle() const;
    QString checkBurnedSubtitle(const QString &avi) const;

    const PreparedSource &m_source;
    const MatrixChoice &m_choice;
    QString m_folder;
    QString m_cli;
};
