// SPDX-License-Identifier: MIT
#pragma once

#include <QItemDelegate>

/// Edits a cell of the hotpixel list's class column with a drop-down list of the three class words.
///
/// It only hands the chosen word to the model: BadpixelListModel::setData() decides what it does.
/// The model reports no cell as editable, so a view uses this only where its editor is opened
/// explicitly. GUI thread.
class PixelclassDelegate : public QItemDelegate
{
    Q_OBJECT

public:
    using QItemDelegate::QItemDelegate;

    /// A combo box in @p parent with "factory", "user" and "ignore", the same for every cell.
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;

    /// Selects the word of the cell; no item when the cell holds another text.
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;

    /// Sets the chosen word as the cell's text.
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;

    /// The editor covers the cell.
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;
};
