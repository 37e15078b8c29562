// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"
#include "camera/ConnectedCameras.h"

#include <QAbstractTableModel>
#include <QList>
#include <QString>
#include <QStringList>

class Camera;
class QTimer;

/// The connected cameras with the columns Cam, Dev, Model, SerNo and Status, kept up to date.
/// GUI thread.
class CameraListModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { CamColumn, DevColumn, ModelColumn, SerNoColumn, StatusColumn };

    /// @param sdk must outlive the model.
    /// @param msec time between two refreshes
    CameraListModel(CameraSdk& sdk, int msec, QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index,
                                int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;

    /// The word in the column Status: "free", "opened" or "in use".
    [[nodiscard]] static QString statusText(const CameraItem& item);

    /// The camera in @p row, or the empty CameraItem for a row outside the list.
    [[nodiscard]] CameraItem item(int row) const;

signals:
    /// A refresh changed rows.
    void somethingChanged();
    /// After every refresh, with row 0.
    void rowToSelect(int row);

public slots:
    /// Remembers which camera this program has open; the rows show it at the next refresh.
    void setOpenCamera(Camera* cam);
    void clearOpenCamera();

    /// Sorts the rows by @p column and emits layoutChanged(); an empty list is left alone. Not
    /// stable. Later refreshes keep the places of the rows and append new cameras.
    /// @throws std::runtime_error "Sort Error" when two rows are to be compared by another column
    ///         or in another order than there is
    void sort(int column, Qt::SortOrder order) override;

    /// Brings the rows up to date with the SDK's list, matching them by devId. When the SDK fails,
    /// the rows stay as far as they were changed and nothing is said; the next refresh tries again.
    void updateList();

private:
    void refreshRows(bool& changed);

    CameraSdk& m_sdk;
    QList<CameraItem> m_rows;
    QStringList m_headerLabels;
    QTimer* m_timer;
    std::uint32_t m_openCameraId = 0;
};
