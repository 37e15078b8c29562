// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"
#include "hotpixel/BadpixelEntryList.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QPoint>
#include <QStringList>

#include <optional>
#include <span>
#include <vector>

class Camera;
Q_MOC_INCLUDE("camera/Camera.h")

/// The one hotpixel list of the program, as a table of three columns: x, y and class.
///
/// Entries come from the opened camera's two lists, from addBadpixel() and from list files; the
/// user entries go back into the camera and into list files. All of it on the GUI thread.
///
/// Several announcements to views do not describe exactly what happened, each
/// described where it is made; so QAbstractItemModelTester does not accept this model.
class BadpixelListModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { XColumn, YColumn, ClassColumn };

    explicit BadpixelListModel(QObject* parent = nullptr);

    /// Number of entries, whatever @p parent is.
    [[nodiscard]] int rowCount(const QModelIndex& parent = QModelIndex()) const override;

    /// Number of columns, 3, whatever @p parent is.
    [[nodiscard]] int columnCount(const QModelIndex& parent = QModelIndex()) const override;

    /// For Qt::DisplayRole and Qt::EditRole: x or y as an integer, or the word for the class, which
    /// is "ignore" for 0, "user" for 1 and "factory" for all others. An invalid variant for other
    /// roles and for cells outside the table.
    [[nodiscard]] QVariant data(const QModelIndex& index,
                                int role = Qt::DisplayRole) const override;

    /// Sets one cell, in any role, and emits dataChanged(index, index) when the result is true.
    ///
    /// Columns 0 and 1 take the low 16 bits of an integer; false when @p value is none. In column 2
    /// the word "factory" makes the class 0; every other value leaves it as it is. True either way.
    /// False for any other column and for a row outside the list.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

    /// Columns: "x", "y", "class" (translated). Rows: their number, from 0.
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;

    /// Inserts @p count user entries at (0, 0) before @p row; no limit applies. Always true.
    bool insertRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;

    /// Removes @p count entries from @p row on, as far as there are so many; all @p count rows are
    /// announced. Always true.
    bool removeRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;

    /// Selectable and enabled, for every index; no cell reports itself as editable.
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// How many user entries the camera can store; 0 until a camera's lists were read.
    [[nodiscard]] int maxUserEntries() const { return m_maxUserEntries; }
    void setMaxUserEntries(int maxUserEntries) { m_maxUserEntries = maxUserEntries; }

    /// How many factory entries the camera reported, which may be more than were read.
    [[nodiscard]] int factoryCount() const { return m_factoryCount; }
    void setFactoryCount(int factoryCount) { m_factoryCount = factoryCount; }

    /// Whether addBadpixel() applies the camera's limit (true at first) or that of 5000 entries.
    [[nodiscard]] bool limitByCamera() const { return m_limitByCamera; }
    void setLimitByCamera(bool limitByCamera) { m_limitByCamera = limitByCamera; }

    /// The entry at @p row, 0 … rowCount() − 1; an entry at (0, 0) for any other row.
    [[nodiscard]] BadpixelEntry badpixelAt(int row) const;

    /// All entries in list order, without a copy. Valid until the model changes.
    [[nodiscard]] std::span<const BadpixelEntry> entries() const { return m_entries.all(); }

    /// The first entry whose x and y both differ from @p position by less than @p tolerance; so 1
    /// means exactly there, and 0 nowhere.
    /// @return the entry's index in column 0, or an invalid index.
    [[nodiscard]] QModelIndex findBadpixel(const QPoint& position, int tolerance) const;

    /// Appends a user entry at @p position (the low 16 bits of its coordinates).
    ///
    /// @return false when a factory or user entry is there already; ignored ones don't count.
    /// @throws ListFull "Can't add more than %1 hotpixel entries." at the limit, also for a
    /// position
    ///         that is in the list. %1 is maxUserEntries().
    bool addBadpixel(const QPoint& position);

    /// Removes the entry at @p row when its class is UserPixel; otherwise returns false.
    bool removeUserBadpixel(int row);

signals:
    /// Emitted by addBadpixel() after each addition, with 1.
    void pixelAdded(int count);

public slots:
    /// Replaces the list by the factory and the user entries in the camera's EEPROM, and takes over
    /// the camera's limit. A list that can't be read, or whose count is not 1 … 1000, adds nothing.
    /// @param cam an open camera; null only clears the list.
    void getBadpixelList(Camera* cam);

    /// Replaces the user list in the camera's EEPROM by the user entries of this list.
    /// @param cam an open camera, not null.
    /// @throws std::runtime_error "Error writing hotpixel list"
    void writeBadpixelList(Camera* cam);

    /// Removes every user entry, one row at a time.
    void clearUserBadpixelList();

    /// Removes every entry.
    void clearBadpixelList();

    /// Writes the user entries to a text file, as hotpixel::writeListFile() describes.
    /// @throws std::runtime_error "Can't open file for writing." or "Can't write file."
    void saveAsFile(QString filename);

    /// Replaces the user entries by all entries of a text file, as hotpixel::readListFile()
    /// describes; they go to the end of the list. No limit applies, and duplicates are kept.
    /// @throws std::runtime_error "Can't open file for reading."; the user entries are gone then.
    void loadFromFile(QString filename);

    /// Sorts by the value in @p column, with support::quickSort(), and emits layoutChanged() unless
    /// the list is empty. Entries with equal values end in the order that this algorithm leaves.
    /// @throws std::runtime_error "Sort Error" for a column or order that does not exist, once
    ///         there are two entries to compare.
    void sort(int column, Qt::SortOrder order) override;

private:
    [[nodiscard]] bool hasRow(int row) const { return row >= 0 && row < rowCount(); }
    void appendCameraEntries(std::vector<BadpixelEntry>&& entries);
    [[nodiscard]] bool isTaken(const BadpixelEntry& candidate);
    void indexEntry(const BadpixelEntry& entry, int change);

    int m_maxUserEntries = 0;
    int m_factoryCount = 0;
    bool m_limitByCamera = true;
    BadpixelEntryList m_entries;
    QStringList m_headers;

    // How many factory and user entries there are at a position. Made when an addition first asks
    // for it and dropped when entries change in bulk.
    std::optional<QHash<std::uint32_t, int>> m_taken;
};
