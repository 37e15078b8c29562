// SPDX-License-Identifier: MIT
#include "hotpixel/BadpixelListModel.h"

#include "camera/Camera.h"
#include "hotpixel/BadpixelListFile.h"
#include "hotpixel/CameraLists.h"
#include "hotpixel/ListFull.h"
#include "support/QuickSort.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

constexpr int MaxCameraListCount = 1000; ///< greater counts are not read from a camera
constexpr int MaxListCount = 5000;       ///< of addBadpixel() without the camera's limit

std::uint32_t positionKey(const BadpixelEntry& entry)
{
    return static_cast<std::uint32_t>(entry.x) << 16U | entry.y;
}

bool blocksAddition(const BadpixelEntry& entry)
{
    return entry.pixelClass == FactoryPixel || entry.pixelClass == UserPixel;
}

template <typename Key>
void sortByKey(std::span<BadpixelEntry> entries, Qt::SortOrder order, Key BadpixelEntry::*key)
{
    if (order == Qt::AscendingOrder) {
        support::quickSort(
            entries.begin(), entries.end(),
            [key](const BadpixelEntry& a, const BadpixelEntry& b) { return a.*key < b.*key; });
    } else {
        support::quickSort(
            entries.begin(), entries.end(),
            [key](const BadpixelEntry& a, const BadpixelEntry& b) { return a.*key > b.*key; });
    }
}

} // namespace

BadpixelListModel::BadpixelListModel(QObject* parent)
    : QAbstractTableModel(parent)
    , m_headers{tr("x"), tr("y"), tr("class")}
{}

int BadpixelListModel::rowCount(const QModelIndex& /*parent*/) const
{
    return static_cast<int>(m_entries.size());
}

int BadpixelListModel::columnCount(const QModelIndex& /*parent*/) const
{
    return static_cast<int>(m_headers.size());
}

QVariant BadpixelListModel::data(const QModelIndex& index, int role) const
{
    if ((role != Qt::DisplayRole && role != Qt::EditRole) || !index.isValid() ||
        !hasRow(index.row())) {
        return {};
    }
    const BadpixelEntry& entry = m_entries[static_cast<std::size_t>(index.row())];
    switch (index.column()) {
    case XColumn:
        return int{entry.x};
    case YColumn:
        return int{entry.y};
    case ClassColumn:
        // behaviour.md: class-words
        switch (entry.pixelClass) {
        case FactoryPixel:
            return QStringLiteral("ignore");
        case UserPixel:
            return QStringLiteral("user");
        default:
            return QStringLiteral("factory");
        }
    default:
        return {};
    }
}

bool BadpixelListModel::setData(const QModelIndex& index, const QVariant& value, int /*role*/)
{
    if (!hasRow(index.row()) || index.column() < 0 || index.column() >= columnCount()) {
        return false;
    }
    BadpixelEntry& entry = m_entries[static_cast<std::size_t>(index.row())];
    BadpixelEntry changed = entry;
    if (index.column() == ClassColumn) {
        // behaviour.md: class-cell
        if (value.toString() == QLatin1String("factory")) {
            changed.pixelClass = FactoryPixel;
        }
    } else {
        bool isInteger = false;
        const auto coordinate = static_cast<std::uint16_t>(value.toInt(&isInteger));
        if (!isInteger) {
            return false;
        }
        (index.column() == XColumn ? changed.x : changed.y) = coordinate;
    }
    indexEntry(entry, -1);
    entry = changed;
    indexEntry(entry, 1);
    emit dataChanged(index, index);
    return true;
}

QVariant BadpixelListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole) {
        return {};
    }
    if (orientation != Qt::Horizontal) {
        return section;
    }
    return section >= 0 && section < m_headers.size() ? m_headers.at(section) : QVariant();
}

bool BadpixelListModel::insertRows(int row, int count, const QModelIndex& /*parent*/)
{
    if (count < 1) {
        return true;
    }
    const int first = std::clamp(row, 0, rowCount());
    const BadpixelEntry entry;
    beginInsertRows(QModelIndex(), first, first + count - 1);
    m_entries.insert(static_cast<std::size_t>(first), static_cast<std::size_t>(count), entry);
    indexEntry(entry, count);
    endInsertRows();
    return true;
}

bool BadpixelListModel::removeRows(int row, int count, const QModelIndex& /*parent*/)
{
    if (count < 1) {
        return true;
    }
    // All rows are announced, also those behind the end of the list.
    beginRemoveRows(QModelIndex(), row, row + count - 1);
    for (int pass = 0; pass < count && hasRow(row); ++pass) {
        const auto position = static_cast<std::size_t>(row);
        indexEntry(m_entries[position], -1);
        m_entries.erase(position);
    }
    endRemoveRows();
    return true;
}

Qt::ItemFlags BadpixelListModel::flags(const QModelIndex& /*index*/) const
{
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled;
}

BadpixelEntry BadpixelListModel::badpixelAt(int row) const
{
    return hasRow(row) ? m_entries[static_cast<std::size_t>(row)] : BadpixelEntry{};
}

QModelIndex BadpixelListModel::findBadpixel(const QPoint& position, int tolerance) const
{
    const auto near = [tolerance = std::int64_t{tolerance}](std::int64_t centre,
                                                            std::int64_t coordinate) {
        return centre - tolerance < coordinate && coordinate < centre + tolerance;
    };
    const std::span<const BadpixelEntry> all = entries();
    const auto found = std::find_if(all.begin(), all.end(), [&](const BadpixelEntry& entry) {
        return near(position.x(), entry.x) && near(position.y(), entry.y);
    });
    return found == all.end() ? QModelIndex()
                              : index(static_cast<int>(found - all.begin()), XColumn);
}

bool BadpixelListModel::addBadpixel(const QPoint& position)
{
    // behaviour.md: full-before-known
    const std::int64_t count = std::int64_t{rowCount()} - (m_limitByCamera ? m_factoryCount : 0);
    const int limit = m_limitByCamera ? m_maxUserEntries : MaxListCount;
    if (count >= limit) {
        throw ListFull(tr("Can't add more than %1 hotpixel entries.").arg(m_maxUserEntries), limit,
                       count);
    }

    const BadpixelEntry entry{static_cast<std::uint16_t>(position.x()),
                              static_cast<std::uint16_t>(position.y()), UserPixel};
    if (isTaken(entry)) {
        return false;
    }

    beginInsertRows(QModelIndex(), rowCount(), rowCount());
    m_entries.append(entry);
    indexEntry(entry, 1);
    endInsertRows();
    emit pixelAdded(1);
    return true;
}

bool BadpixelListModel::removeUserBadpixel(int row)
{
    if (!hasRow(row) || badpixelAt(row).pixelClass != UserPixel) {
        return false;
    }
    return removeRows(row, 1);
}

void BadpixelListModel::getBadpixelList(Camera* cam)
{
    clearBadpixelList();
    if (cam == nullptr) {
        return;
    }
    // behaviour.md: unread-lists
    const CameraLists lists(*cam);
    const auto append = [&](std::int32_t command, std::int32_t count, Pixelclass pixelClass) {
        std::vector<BadpixelEntry> entries;
        if (count >= 1 && count <= MaxCameraListCount &&
            lists.readList(command, static_cast<std::size_t>(count), pixelClass, entries) == 0) {
            appendCameraEntries(std::move(entries));
        }
    };
    lists.readNumber(camera::GetMaxUserEntries, m_maxUserEntries);
    lists.readNumber(camera::GetFactoryCount, m_factoryCount);
    append(camera::GetFactoryList, m_factoryCount, FactoryPixel);

    std::int32_t userCount = 0;
    lists.readNumber(camera::GetUserCount, userCount);
    append(camera::GetUserList, userCount, UserPixel);
}

void BadpixelListModel::writeBadpixelList(Camera* cam)
{
    std::vector<BadpixelEntry> userEntries;
    std::ranges::copy_if(entries(), std::back_inserter(userEntries),
                         [](const BadpixelEntry& entry) { return entry.pixelClass == UserPixel; });
    if (CameraLists(*cam).writeUserList(userEntries) != 0) {
        throw std::runtime_error(tr("Error writing hotpixel list").toStdString());
    }
}

void BadpixelListModel::clearUserBadpixelList()
{
    m_taken.reset();
    int row = 0;
    while (row < rowCount()) {
        if (!removeUserBadpixel(row)) {
            ++row;
        }
    }
}

void BadpixelListModel::clearBadpixelList()
{
    if (rowCount() == 0) {
        return;
    }
    beginRemoveRows(QModelIndex(), 0, rowCount() - 1);
    m_entries.clear();
    m_taken.reset();
    endRemoveRows();
}

void BadpixelListModel::saveAsFile(QString filename)
{
    hotpixel::writeListFile(filename, entries());
}

void BadpixelListModel::loadFromFile(QString filename)
{
    // behaviour.md: load-first-clears
    clearUserBadpixelList();
    m_entries.append(hotpixel::readListFile(filename));
    m_taken.reset();
    // behaviour.md: load-one-word
    emit layoutChanged();
}

void BadpixelListModel::sort(int column, Qt::SortOrder order)
{
    if (rowCount() == 0) {
        return;
    }
    // A single entry is never compared, so it is "sorted" by any column.
    if (rowCount() > 1) {
        const bool ordered = order == Qt::AscendingOrder || order == Qt::DescendingOrder;
        if (column < 0 || column >= columnCount() || !ordered) {
            throw std::runtime_error(tr("Sort Error").toStdString());
        }
        switch (column) {
        case XColumn:
            sortByKey(m_entries.all(), order, &BadpixelEntry::x);
            break;
        case YColumn:
            sortByKey(m_entries.all(), order, &BadpixelEntry::y);
            break;
        default:
            sortByKey(m_entries.all(), order, &BadpixelEntry::pixelClass);
            break;
        }
    }
    // behaviour.md: sort-keeps-rows
    emit layoutChanged();
}

void BadpixelListModel::appendCameraEntries(std::vector<BadpixelEntry>&& entries)
{
    // behaviour.md: user-rows-first
    beginInsertRows(QModelIndex(), 0, static_cast<int>(entries.size()) - 1);
    m_entries.append(std::move(entries));
    m_taken.reset();
    endInsertRows();
}

bool BadpixelListModel::isTaken(const BadpixelEntry& candidate)
{
    if (!m_taken) {
        m_taken.emplace();
        for (const BadpixelEntry& entry : entries()) {
            indexEntry(entry, 1);
        }
    }
    return m_taken->value(positionKey(candidate)) > 0;
}

void BadpixelListModel::indexEntry(const BadpixelEntry& entry, int change)
{
    if (m_taken && blocksAddition(entry)) {
        (*m_taken)[positionKey(entry)] += change;
    }
}
