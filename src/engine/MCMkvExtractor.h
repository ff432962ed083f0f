#pragma once

#include "MCConverter.h"

// Copies one track of a Matroska file into a file of its own with mkvextract.
class MCMkvExtractor : public MCConverter
{
public:
    MCMkvExtractor();

    QString startConversionFor(const MCSelectionPtr &selection) override;
    QString monitorConversion() override;

    // The percentage at the end of an mkvextract progress line, or "error".
    static QString progressFromLine(const QString &line);

protected:
    // mkvextract ends with 1 when it only warned.
    bool exitCodeMeansSuccess(int exitCode) const override { return exitCode <= 1; }
};
