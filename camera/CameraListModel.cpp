// SPDX-License-Identifier: MIT
#include "camera/CameraListModel.h"

#include "camera/Camera.h"
#include "support/QuickSort.h"

#include <QTimer>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace {

bool ascending(const CameraItem& a, const CameraItem& b, int column)
{
    switch (column) {
    case CameraListModel::CamColumn:
        return a.camId < b.camId;
    case CameraListModel::DevColumn:
        // behaviour.md: dev-column
        return a.devId < b.camId;
    case CameraListModel::ModelColumn:
        return a.model < b.model;
    case CameraListModel::SerNoColumn:
        return a.serNo < b.serNo;
    case CameraListModel::StatusColumn:
        return QString::localeAwareCompare(CameraListModel::statusText(b),
                                           CameraListModel::statusText(a)) > 0;
    default:
        throw std::runtime_error(CameraListModel::tr("Sort Error").toStdString());
    }
}

bool descending(const CameraItem& a, const CameraItem& b, int column)
{
    // behaviour.md: dev-column; for the other columns this is the ascending
    // order of b and a.
    return column == CameraListModel::DevColumn ? a.devId > b.camId : ascending(b, a, column);
}

bool comesBefore(const CameraItem& a, const CameraItem& b, int column, Qt::SortOrder order)
{
    switch (order) {
    case Qt::AscendingOrder:
        return ascending(a, b, column);
    case Qt::DescendingOrder:
        return descending(a, b, column);
    }
    throw std::runtime_error(CameraListModel::tr("Sort Error").toStdString());
}

} // namespace

CameraListModel::CameraListModel(CameraSdk& sdk, int msec, QObject* parent)
    : QAbstractTableModel(parent)
    , m_sdk(sdk)
    , m_headerLabels({tr("Cam"), tr("Dev"), tr("Model"), tr("SerNo"), tr("Status")})
    , m_timer(new QTimer(this))
{
    if (connect(m_timer, &QTimer::timeout, this, &CameraListModel::updateList)) {
        m_timer->start(msec);
    }
}

int CameraListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int CameraListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_headerLabels.size());
}

QVariant CameraListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || role != Qt::DisplayRole) {
        return {};
    }
    const CameraItem& item = m_rows.at(index.row());
    switch (index.column()) {
    case CamColumn:
        return item.camId;
    case DevColumn:
        return item.devId;
    case ModelColumn:
        return item.model;
    case SerNoColumn:
        return item.serNo;
    case StatusColumn:
        return statusText(item);
    default:
        return {};
    }
}

QVariant CameraListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole) {
        return {};
    }
    if (orientation == Qt::Vertical) {
        return section;
    }
    return section >= 0 && section < columnCount() ? QVariant(m_headerLabels.at(section))
                                                   : QVariant();
}

QString CameraListModel::statusText(const CameraItem& item)
{
    if (item.status == 0) {
        return tr("free");
    }
    return item.opened ? tr("opened") : tr("in use");
}

CameraItem CameraListModel::item(int row) const
{
    return m_rows.value(row);
}

void CameraListModel::setOpenCamera(Camera* cam)
{
    m_openCameraId = cam->cameraId();
}

void CameraListModel::clearOpenCamera()
{
    m_openCameraId = 0;
}

void CameraListModel::sort(int column, Qt::SortOrder order)
{
    if (m_rows.isEmpty()) {
        return;
    }
    support::quickSort(m_rows.begin(), m_rows.end(),
                       [column, order](const CameraItem& a, const CameraItem& b) {
                           return comesBefore(a, b, column, order);
                       });
    emit layoutChanged();
}

void CameraListModel::updateList()
{
    bool changed = false;
    try {
        refreshRows(changed);
    } catch (const std::exception&) {
        // Nothing to say: this comes once a second, and the next time may well go better.
    }
    if (changed) {
        emit somethingChanged();
    }
    emit rowToSelect(0);
}

void CameraListModel::refreshRows(bool& changed)
{
    const std::int32_t count = camera::numberOfCameras(m_sdk);
    if (count < 1) {
        if (!m_rows.isEmpty()) {
            beginRemoveRows({}, 0, rowCount() - 1);
            m_rows.clear();
            endRemoveRows();
            changed = true;
        }
        return;
    }

    QList<CameraItem> cameras = camera::cameraList(m_sdk, count);
    for (int row = 0; row < rowCount();) {
        const auto camera =
            std::find_if(cameras.begin(), cameras.end(), [&](const CameraItem& candidate) {
                return candidate.devId == m_rows.at(row).devId;
            });
        if (camera == cameras.end()) {
            beginRemoveRows({}, row, row);
            m_rows.removeAt(row);
            endRemoveRows();
            changed = true;
            continue;
        }
        if (camera->devId == m_openCameraId) {
            camera->opened = true;
        }
        if (m_rows.at(row) != *camera) {
            m_rows[row] = *camera;
            emit dataChanged(index(row, 0), index(row, columnCount() - 1));
            changed = true;
        }
        cameras.erase(camera);
        ++row;
    }

    if (!cameras.isEmpty()) {
        // behaviour.md: new-row-later
        beginInsertRows({}, rowCount(), rowCount() + static_cast<int>(cameras.size()) - 1);
        m_rows.append(std::move(cameras));
        endInsertRows();
        changed = true;
    }
}
