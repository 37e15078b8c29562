// SPDX-License-Identifier: MIT
#pragma once

#include <QHeaderView>

/// The hidden row header of a table whose rows are all equally high.
///
/// The toolkit's header moves what it keeps of the rows below at each removal. A list that removes
/// a million rows one by one would keep the window busy for an hour; this header only asks how many
/// rows there are when the removals are over.
class RowHeader final : public QHeaderView
{
    Q_OBJECT

public:
    explicit RowHeader(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;

private:
    void countRowsLater();

    bool m_countsLater = false;
};
