// SPDX-License-Identifier: MIT
#include "app/RowHeader.h"

#include <QAbstractItemModel>

RowHeader::RowHeader(QWidget* parent)
    : QHeaderView(Qt::Vertical, parent)
{}

void RowHeader::setModel(QAbstractItemModel* model)
{
    if (model == this->model()) {
        return;
    }
    if (this->model() != nullptr) {
        disconnect(this->model(), &QAbstractItemModel::rowsRemoved, this,
                   &RowHeader::countRowsLater);
    }
    QHeaderView::setModel(model);
    if (model != nullptr) {
        // What the toolkit's header does at a removal, before and after it.
        disconnect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this, nullptr);
        disconnect(model, &QAbstractItemModel::rowsRemoved, this, nullptr);
        connect(model, &QAbstractItemModel::rowsRemoved, this, &RowHeader::countRowsLater);
    }
}

void RowHeader::countRowsLater()
{
    if (m_countsLater) {
        return;
    }
    m_countsLater = true;
    // Until then there are sections without a row behind the last one, which show nothing.
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_countsLater = false;
            initializeSections();
        },
        Qt::QueuedConnection);
}
