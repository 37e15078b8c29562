// SPDX-License-Identifier: MIT
#include "hotpixel/PixelclassDelegate.h"

#include "hotpixel/BadpixelListModel.h"

#include <QComboBox>
#include <QFile>
#include <QMetaObject>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>

namespace {

/// A list of one factory, one user and one ignored entry, in this order.
class ClassEditor : public testing::Test
{
protected:
    ClassEditor()
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath("list.txt"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("1 1 0\n2 2 1\n3 3 2\n");
        file.close();
        m_model.loadFromFile(file.fileName());
    }

    [[nodiscard]] QModelIndex classCell(int row) const { return m_model.index(row, 2); }

    [[nodiscard]] std::unique_ptr<QComboBox> openEditor(int row)
    {
        std::unique_ptr<QComboBox> editor(qobject_cast<QComboBox*>(
            m_delegate.createEditor(nullptr, QStyleOptionViewItem(), classCell(row))));
        m_delegate.setEditorData(editor.get(), classCell(row));
        return editor;
    }

    void choose(int row, const QString& word)
    {
        const std::unique_ptr<QComboBox> editor = openEditor(row);
        editor->setCurrentText(word);
        m_delegate.setModelData(editor.get(), &m_model, classCell(row));
    }

    [[nodiscard]] int classOf(int row) const { return m_model.badpixelAt(row).pixelClass; }

    BadpixelListModel m_model;
    PixelclassDelegate m_delegate;
};

} // namespace

TEST_F(ClassEditor, HasNoMethodsOfItsOwn)
{
    const QMetaObject* meta = m_delegate.metaObject();
    EXPECT_STREQ(meta->className(), "PixelclassDelegate");
    EXPECT_EQ(meta->methodCount(), meta->methodOffset());
}

TEST_F(ClassEditor, OffersTheSameThreeWordsForEveryCell)
{
    QWidget parent;
    for (const QModelIndex& index :
         {classCell(0), classCell(1), m_model.index(0, 0), QModelIndex()}) {
        const auto* editor = qobject_cast<QComboBox*>(
            m_delegate.createEditor(&parent, QStyleOptionViewItem(), index));
        ASSERT_NE(editor, nullptr);
        EXPECT_EQ(editor->parentWidget(), &parent);
        ASSERT_EQ(editor->count(), 3);
        const QStringList words = {"factory", "user", "ignore"};
        for (int item = 0; item < 3; ++item) {
            EXPECT_EQ(editor->itemText(item), words.at(item));
            EXPECT_TRUE(editor->itemIcon(item).isNull());
            EXPECT_FALSE(editor->itemData(item).isValid());
        }
    }
}

TEST_F(ClassEditor, OpensOnTheWordOfTheCell)
{
    EXPECT_EQ(openEditor(0)->currentText(), "ignore");
    EXPECT_EQ(openEditor(1)->currentText(), "user");
    EXPECT_EQ(openEditor(2)->currentText(), "factory");
}

TEST_F(ClassEditor, OpensEmptyOnATextThatIsNoClass)
{
    const std::unique_ptr<QComboBox> editor = openEditor(0);
    m_delegate.setEditorData(editor.get(), m_model.index(0, 0));
    EXPECT_EQ(editor->currentIndex(), -1);
}

TEST_F(ClassEditor, LeavesTheClassForTheWordUser)
{
    choose(0, "user");
    EXPECT_EQ(classOf(0), 0);
    choose(2, "user");
    EXPECT_EQ(classOf(2), 2);
}

TEST_F(ClassEditor, LeavesTheClassForTheWordIgnore)
{
    choose(1, "ignore");
    EXPECT_EQ(classOf(1), 1);
}

TEST_F(ClassEditor, MakesAUserEntryClassZeroForTheWordFactory)
{
    choose(1, "factory");
    EXPECT_EQ(classOf(1), 0);
    EXPECT_EQ(m_model.data(classCell(1)).toString(), "ignore");
    m_model.clearUserBadpixelList();
    EXPECT_EQ(m_model.rowCount(), 3) << "it is no user entry any more";
}

TEST_F(ClassEditor, CoversTheCell)
{
    QWidget editor;
    QStyleOptionViewItem option;
    option.rect = QRect(3, 4, 50, 20);
    m_delegate.updateEditorGeometry(&editor, option, classCell(0));
    EXPECT_EQ(editor.geometry(), QRect(3, 4, 50, 20));
}

TEST_F(ClassEditor, IsNotOpenedByAViewItself)
{
    QTableView view;
    view.setModel(&m_model);
    view.setItemDelegateForColumn(2, &m_delegate);
    view.show();
    view.setCurrentIndex(classCell(1));
    QTest::keyClick(&view, Qt::Key_F2);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier,
                       view.visualRect(classCell(1)).center());
    EXPECT_EQ(view.indexWidget(classCell(1)), nullptr);
    EXPECT_EQ(view.viewport()->findChild<QComboBox*>(), nullptr);
}

TEST_F(ClassEditor, EditsTheCellWhereAViewOpensIt)
{
    QTableView view;
    view.setModel(&m_model);
    view.setItemDelegateForColumn(2, &m_delegate);
    view.show();
    view.openPersistentEditor(classCell(1));
    auto* editor = view.viewport()->findChild<QComboBox*>();
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->currentText(), "user");
    editor->setCurrentText("factory");
    emit m_delegate.commitData(editor);
    EXPECT_EQ(classOf(1), 0);
    view.closePersistentEditor(classCell(1));
}
