#pragma once

#include "platform/ChunkedList.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QString>
#include <optional>
#include <vector>

// One row of a list view: the text, the key of its small icon, its colour, a
// free tag, and one sub-item shown in a second column.
struct ListItem {
    QString text;
    QString iconKey;
    quint32 color = 0xFFFFFF; // 24-bit, red in the low byte
    QString tag;
    QString subText;
    QString subIconKey;
    // The sub-item's own tag, and its colour when it differs from the item's.
    QString subTag;
    std::optional<quint32> subColor;
    QString toolTip;
    QString subToolTip;
    // A look-up key of the owner's choosing; the model counts the items of
    // each key, so asking whether any item has one costs nothing.
    QString key;

    static ListItem withText(const QString& text) {
        ListItem item;
        item.text = text;
        return item;
    }
};

// The items of a list view, 1-based as scripts and commands see them. The
// window shows it through the usual item-model roles plus the ones below.
class ListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Role { IconKeyRole = Qt::UserRole + 1, ColorRole, TagRole };

    explicit ListModel(QObject* parent = nullptr);

    int count() const { return int(m_items.size()); }
    // 1-based; `at` of 0 or past the end appends.
    int add(const ListItem& item, int at = 0);
    void removeAt(int index);
    void clear();
    const ListItem& item(int index) const { return m_items.at(size_t(index - 1)).item; }
    void setItem(int index, const ListItem& item);
    // 1-based index of the first item whose text matches, ignoring case; 0 if none.
    int find(const QString& text) const;
    int keyCount(const QString& key) const {
        const auto labels = m_keys.constFind(key);
        return labels == m_keys.cend() ? 0 : int(labels->size());
    }
    // 1-based rows of the items with the key, the last row first.
    std::vector<int> rowsWithKey(const QString& key) const;

    QString Tag;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    // Each row carries a label that rises down the list, so that the row of
    // an item with a key is found by a search rather than a walk.
    struct Row {
        ListItem item;
        qint64 label = 0;
    };
    qint64 labelFor(int row);
    void relabel();
    int rowOf(qint64 label) const;
    void countKey(const QString& key, qint64 label, bool add);

    ChunkedList<Row> m_items;
    QHash<QString, std::vector<qint64>> m_keys; // labels of the items with each key
};
