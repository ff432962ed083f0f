#include "MCTrackTableModel.h"

namespace {

// "none" and "0" are the records' empty values; the table shows them blank.
QString shown(const QString &value)
{
    return value == QLatin1String("none") || value == QLatin1String("0") ? QString() : value;
}

QString bitRateText(const QString &bitsPerSecond)
{
    bool ok = false;
    const qint64 value = bitsPerSecond.toLongLong(&ok);
    if (!ok || value <= 0)
        return shown(bitsPerSecond);
    // Reports give kb/s for some tracks and b/s for others.
    return QStringLiteral("%1 kb/s").arg(value >= 10000 ? (value + 500) / 1000 : value);
}

} // namespace

MCTrackTableModel::MCTrackTableModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void MCTrackTableModel::setTracks(const MCTrackList &tracks)
{
    beginResetModel();
    m_tracks = tracks;
    endResetModel();
}

void MCTrackTableModel::refresh()
{
    if (!m_tracks.isEmpty())
        emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

int MCTrackTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_tracks.size());
}

int MCTrackTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant MCTrackTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_tracks.size())
        return {};
    const MCVideoTrack &track = *m_tracks.at(index.row());
    if (index.column() == SelectedColumn) {
        if (role == Qt::CheckStateRole)
            return track.trackSelected ? Qt::Checked : Qt::Unchecked;
        return {};
    }
    if (role == Qt::ToolTipRole && index.column() == InfoColumn)
        return track.trackFilePath;
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case InfoColumn:
        return shown(track.trackInfo);
    case TitleColumn:
        return shown(track.trackTitle);
    case LanguageColumn:
        return track.trackLanguage;
    case BitRateColumn:
        return bitRateText(track.trackBitRate);
    case ChannelsColumn:
        return shown(track.trackNumberOfChannels);
    default:
        return {};
    }
}

bool MCTrackTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || index.column() != SelectedColumn || role != Qt::CheckStateRole)
        return false;
    m_tracks.at(index.row())->trackSelected = value.toInt() == Qt::Checked;
    emit dataChanged(index, index);
    if (m_onSelectionChanged)
        m_onSelectionChanged();
    return true;
}

Qt::ItemFlags MCTrackTableModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (index.column() == SelectedColumn)
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

QVariant MCTrackTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const char *titles[] = {"", "Track", "Title", "Language", "Bit Rate", "Channels"};
    return section >= 0 && section < ColumnCount ? QString::fromLatin1(titles[section]) : QVariant();
}
