#include "platform/ListModel.h"

ListModel::ListModel(QObject* parent) : QAbstractTableModel(parent) {}

int ListModel::add(const ListItem& item, int at) {
    const int row = (at < 1 || at > count()) ? count() : at - 1;
    beginInsertRows({}, row, row);
    m_items.insert(m_items.begin() + row, item);
    countKey(item.key, 1);
    endInsertRows();
    return row + 1;
}

void ListModel::removeAt(int index) {
    if (index < 1 || index > count()) return;
    beginRemoveRows({}, index - 1, index - 1);
    countKey(m_items[size_t(index - 1)].key, -1);
    m_items.erase(m_items.begin() + (index - 1));
    endRemoveRows();
}

void ListModel::clear() {
    if (m_items.empty()) return;
    beginResetModel();
    m_items.clear();
    m_keys.clear();
    endResetModel();
}

void ListModel::setItem(int index, const ListItem& item) {
    if (index < 1 || index > count()) return;
    countKey(m_items[size_t(index - 1)].key, -1);
    countKey(item.key, 1);
    m_items[size_t(index - 1)] = item;
    Q_EMIT dataChanged(this->index(index - 1, 0), this->index(index - 1, 1));
}

void ListModel::countKey(const QString& key, int change) {
    if (key.isEmpty()) return;
    const int count = m_keys.value(key) + change;
    if (count > 0)
        m_keys.insert(key, count);
    else
        m_keys.remove(key);
}

int ListModel::find(const QString& text) const {
    for (size_t i = 0; i < m_items.size(); ++i) {
        if (m_items[i].text.compare(text, Qt::CaseInsensitive) == 0) return int(i) + 1;
    }
    return 0;
}

int ListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

int ListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 2;
}

QVariant ListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count()) return {};
    const ListItem& it = m_items[size_t(index.row())];
    const bool sub = index.column() == 1;
    switch (role) {
    case Qt::DisplayRole:
        return sub ? it.subText : it.text;
    case IconKeyRole:
        return sub ? it.subIconKey : it.iconKey;
    case ColorRole:
        return it.color;
    case TagRole:
        return it.tag;
    case Qt::ToolTipRole: {
        const QString& tip = sub ? it.subToolTip : it.toolTip;
        return tip.isEmpty() ? QVariant() : QVariant(tip);
    }
    default:
        return {};
    }
}
