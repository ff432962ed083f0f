#pragma once

#include "MCCliOptions.h"

#include <QVariantMap>

#include <optional>

// kestrane-cli presets: lists, shows, adds and removes presets in the
// settings file the window uses, so a machine without a screen can set up
// batches and watch folders.
class MCCliPresets
{
public:
    explicit MCCliPresets(const MCCliOptions &options);

    // The exit status: 0 done, 1 the store refused, 2 bad usage.
    int run();

    // A settings preset record from the convert options.
    static QVariantMap settingsRecord(const MCCliOptions &options);
    // A track-selection preset record from the filters; an error text for
    // a filter it cannot read.
    static std::optional<QVariantMap> selectionRecord(const MCCliOptions &options, QString *error);

private:
    const MCCliOptions &m_options;
};
