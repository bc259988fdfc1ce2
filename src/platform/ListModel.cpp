#include "platform/ListModel.h"

#include <algorithm>
#include <functional>

ListModel::ListModel(QObject* parent) : QAbstractTableModel(parent) {}

namespace {

// Room between labels, so that most inserts between two rows find one free.
constexpr qint64 kLabelGap = qint64(1) << 20;

} // namespace

int ListModel::add(const ListItem& item, int at) {
    const int row = (at < 1 || at > count()) ? count() : at - 1;
    const qint64 label = labelFor(row);
    beginInsertRows({}, row, row);
    m_items.insert(size_t(row), Row{item, label});
    countKey(item.key, label, true);
    endInsertRows();
    return row + 1;
}

// A label between the rows before and at the 0-based row.
qint64 ListModel::labelFor(int row) {
    if (m_items.empty()) return 0;
    if (row == count()) return m_items[size_t(row - 1)].label + kLabelGap;
    if (row == 0) return m_items[0].label - kLabelGap;
    const qint64 before = m_items[size_t(row - 1)].label;
    const qint64 after = m_items[size_t(row)].label;
    if (after - before >= 2) return before + (after - before) / 2;
    relabel();
    return labelFor(row);
}

void ListModel::relabel() {
    m_keys.clear();
    qint64 label = 0;
    for (Row& row : m_items) {
        row.label = label;
        countKey(row.item.key, label, true);
        label += kLabelGap;
    }
}

int ListModel::rowOf(qint64 label) const {
    return int(m_items.partitionPoint([label](const Row& row) { return row.label < label; })) + 1;
}

std::vector<int> ListModel::rowsWithKey(const QString& key) const {
    std::vector<int> rows;
    const auto labels = m_keys.constFind(key);
    if (labels == m_keys.cend()) return rows;
    for (qint64 label : *labels)
        rows.push_back(rowOf(label));
    std::sort(rows.begin(), rows.end(), std::greater<int>());
    return rows;
}

void ListModel::removeAt(int index) {
    if (index < 1 || index > count()) return;
    beginRemoveRows({}, index - 1, index - 1);
    const Row& row = m_items[size_t(index - 1)];
    countKey(row.item.key, row.label, false);
    m_items.erase(size_t(index - 1));
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
    Row& row = m_items[size_t(index - 1)];
    if (row.item.key != item.key) {
        countKey(row.item.key, row.label, false);
        countKey(item.key, row.label, true);
    }
    row.item = item;
    Q_EMIT dataChanged(this->index(index - 1, 0), this->index(index - 1, 1));
}

void ListModel::countKey(const QString& key, qint64 label, bool add) {
    if (key.isEmpty()) return;
    if (add) {
        m_keys[key].push_back(label);
        return;
    }
    const auto labels = m_keys.find(key);
    if (labels == m_keys.end()) return;
    std::erase(*labels, label);
    if (labels->empty()) m_keys.erase(labels);
}

int ListModel::find(const QString& text) const {
    for (size_t i = 0; i < m_items.size(); ++i) {
        if (m_items[i].item.text.compare(text, Qt::CaseInsensitive) == 0) return int(i) + 1;
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
    const ListItem& it = m_items[size_t(index.row())].item;
    const bool sub = index.column() == 1;
    switch (role) {
    case Qt::DisplayRole:
        return sub ? it.subText : it.text;
    case IconKeyRole:
        return sub ? it.subIconKey : it.iconKey;
    case ColorRole:
        return sub ? it.subColor.value_or(it.color) : it.color;
    case TagRole:
        return sub ? it.subTag : it.tag;
    case Qt::ToolTipRole: {
        const QString& tip = sub ? it.subToolTip : it.toolTip;
        return tip.isEmpty() ? QVariant() : QVariant(tip);
    }
    default:
        return {};
    }
}
