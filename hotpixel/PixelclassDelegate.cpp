// SPDX-License-Identifier: MIT
#include "hotpixel/PixelclassDelegate.h"

#include <QComboBox>

QWidget* PixelclassDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                          const QModelIndex& /*index*/) const
{
    auto* comboBox = new QComboBox(parent);
    // The words are not translated: the model matches and produces exactly these.
    for (const char* word : {"factory", "user", "ignore"}) {
        comboBox->addItem(QIcon(), QString::fromLatin1(word));
    }
    return comboBox;
}

void PixelclassDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    auto* comboBox = qobject_cast<QComboBox*>(editor);
    if (comboBox == nullptr || !index.isValid()) {
        return;
    }
    const QString word = index.data(Qt::EditRole).toString();
    comboBox->setCurrentIndex(comboBox->findText(word, Qt::MatchCaseSensitive));
}

void PixelclassDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                      const QModelIndex& index) const
{
    if (const auto* comboBox = qobject_cast<QComboBox*>(editor)) {
        model->setData(index, comboBox->currentText(), Qt::EditRole);
    }
}

void PixelclassDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                              const QModelIndex& /*index*/) const
{
    editor->setGeometry(option.rect);
}
