#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <tuple>
#include <utility>
#include <vector>

// A sequence in order, indexed from 0, that takes an insert or an erase in the
// middle at a cost that hardly grows with its length: the items live in short
// runs, and a change moves the items of one run and the starts of the runs.
// A channel of 10,000 users loses one from the middle as cheaply as a channel
// of 100.
template <typename T> class ChunkedList {
    static constexpr std::size_t kRun = 64; // a run splits beyond twice this

public:
    template <bool Const> class Iterator {
        using List = std::conditional_t<Const, const ChunkedList, ChunkedList>;

    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = std::conditional_t<Const, const T*, T*>;
        using reference = std::conditional_t<Const, const T&, T&>;

        Iterator() = default;
        Iterator(List* list, std::size_t run, std::size_t at)
            : m_list(list), m_run(run), m_at(at) {}
        reference operator*() const { return m_list->m_runs[m_run][m_at]; }
        pointer operator->() const { return &**this; }
        Iterator& operator++() {
            if (++m_at == m_list->m_runs[m_run].size()) {
                ++m_run;
                m_at = 0;
            }
            return *this;
        }
        Iterator operator++(int) {
            Iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const Iterator& other) const {
            return m_run == other.m_run && m_at == other.m_at;
        }

    private:
        List* m_list = nullptr;
        std::size_t m_run = 0;
        std::size_t m_at = 0;
    };
    using iterator = Iterator<false>;
    using const_iterator = Iterator<true>;

    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }

    T& operator[](std::size_t i) {
        const auto [run, at] = locate(i);
        return m_runs[run][at];
    }
    const T& operator[](std::size_t i) const {
        const auto [run, at] = locate(i);
        return m_runs[run][at];
    }
    T& at(std::size_t i) {
        if (i >= m_size) throw std::out_of_range("ChunkedList::at");
        return (*this)[i];
    }
    const T& at(std::size_t i) const {
        if (i >= m_size) throw std::out_of_range("ChunkedList::at");
        return (*this)[i];
    }

    iterator begin() { return {this, 0, 0}; }
    iterator end() { return {this, m_runs.size(), 0}; }
    const_iterator begin() const { return {this, 0, 0}; }
    const_iterator end() const { return {this, m_runs.size(), 0}; }

    // The index of the first item for which `before` is false, on items
    // partitioned by it (as std::partition_point); the size when none is.
    template <typename Before> std::size_t partitionPoint(Before before) const {
        const auto run =
            std::partition_point(m_runs.begin(), m_runs.end(),
                                 [&](const std::vector<T>& r) { return before(r.back()); });
        if (run == m_runs.end()) return m_size;
        const auto at = std::partition_point(run->begin(), run->end(), before);
        return m_starts[std::size_t(run - m_runs.begin())] + std::size_t(at - run->begin());
    }

    void push_back(T value) { insert(m_size, std::move(value)); }

    // Before the item at i; at the end when i is the size.
    void insert(std::size_t i, T value) {
        if (m_runs.empty() || (i == m_size && m_runs.back().size() >= 2 * kRun)) {
            m_runs.emplace_back();
            m_starts.push_back(m_size);
        }
        std::size_t run;
        std::size_t at;
        if (i == m_size) {
            run = m_runs.size() - 1;
            at = m_runs[run].size();
        } else {
            std::tie(run, at) = locate(i);
        }
        std::vector<T>& items = m_runs[run];
        items.insert(items.begin() + std::ptrdiff_t(at), std::move(value));
        ++m_size;
        shiftStarts(run + 1, 1);
        if (items.size() > 2 * kRun) split(run);
    }

    void erase(std::size_t i) {
        const auto [run, at] = locate(i);
        std::vector<T>& items = m_runs[run];
        items.erase(items.begin() + std::ptrdiff_t(at));
        --m_size;
        shiftStarts(run + 1, -1);
        if (items.empty()) {
            // An empty run starts where the next one does: it goes alone.
            m_runs.erase(m_runs.begin() + std::ptrdiff_t(run));
            m_starts.erase(m_starts.begin() + std::ptrdiff_t(run));
        }
    }

    void clear() {
        m_runs.clear();
        m_starts.clear();
        m_size = 0;
    }

private:
    std::pair<std::size_t, std::size_t> locate(std::size_t i) const {
        const auto after = std::upper_bound(m_starts.begin(), m_starts.end(), i);
        const std::size_t run = std::size_t(after - m_starts.begin()) - 1;
        return {run, i - m_starts[run]};
    }

    void split(std::size_t run) {
        std::vector<T>& items = m_runs[run];
        std::vector<T> tail(std::make_move_iterator(items.begin() + kRun),
                            std::make_move_iterator(items.end()));
        items.erase(items.begin() + kRun, items.end());
        m_runs.insert(m_runs.begin() + std::ptrdiff_t(run + 1), std::move(tail));
        m_starts.insert(m_starts.begin() + std::ptrdiff_t(run + 1), m_starts[run] + kRun);
    }

    // The runs from `run` on moved by one item: their starts follow, in one
    // pass over a plain array rather than a walk of the runs.
    void shiftStarts(std::size_t run, int by) {
        for (std::size_t r = run; r < m_starts.size(); ++r)
            m_starts[r] += std::size_t(std::ptrdiff_t(by));
    }

    std::vector<std::vector<T>> m_runs;
    std::vector<std::size_t> m_starts; // index of each run's first item
    std::size_t m_size = 0;
};
