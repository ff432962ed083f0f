#pragma once

#include "MCVideoTrack.h"

#include <QAbstractTableModel>

#include <functional>

// The track table: one row per track of the file on screen, with a check
// box that selects the track and its properties as texts.
class MCTrackTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { SelectedColumn, InfoColumn, TitleColumn, LanguageColumn, BitRateColumn, ChannelsColumn, ColumnCount };

    explicit MCTrackTableModel(QObject *parent = nullptr);

    // Shows these tracks; the model shares them with the file.
    void setTracks(const MCTrackList &tracks);
    const MCTrackList &tracks() const { return m_tracks; }
    // Re-reads every row (selection flags changed elsewhere).
    void refresh();
    // Called after the user ticked or cleared a track.
    void setSelectionChangedHandler(std::function<void()> handler) { m_onSelectionChanged = std::move(handler); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    MCTrackList m_tracks;
    std::function<void()> m_onSelectionChanged;
};
