#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <QString>
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
    const ListItem& item(int index) const { return m_items.at(size_t(index - 1)); }
    void setItem(int index, const ListItem& item);
    // 1-based index of the first item whose text matches, ignoring case; 0 if none.
    int find(const QString& text) const;
    int keyCount(const QString& key) const { return m_keys.value(key); }

    QString Tag;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    void countKey(const QString& key, int change);

    std::vector<ListItem> m_items;
    QHash<QString, int> m_keys;
};
