// SPDX-License-Identifier: MIT
//
// The program's lists: singly linked, with one built-in cursor and 1-based positions.
//
// A list frees its own nodes and never its elements: removing an element returns the pointer to the caller.
// An owner of a list's elements uses `gw::ElementsOwner` or calls `gw::delete_elements`. Long lists are fast
// enough: access to ascending positions continues from the last one, and the sorted list finds its insertion
// point with an index.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <set>
#include <utility>
#include <vector>

class GW_FILE;

namespace gw {

/// The state of a sorted list for which an index was made. When the list has another state, the index is out
/// of date.
struct ListState {
    unsigned long revision = 0;    ///< changes with the list's structure
    unsigned long generation = 0;  ///< changes with the elements' keys
    bool operator==(const ListState&) const = default;
};

}  // namespace gw

/// Storage, traversal and removal.
template <class T>
class GW_LIST_BASE {
  protected:
    struct Node {
        Node* next;
        T* elem;
    };

  public:
    /// Walks the elements in list order without moving the list's cursor.
    class Iterator {
      public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T*;
        using difference_type = std::ptrdiff_t;
        using pointer = T* const*;
        using reference = T*;

        explicit Iterator(const Node* node = nullptr) : node_(node) {}
        T* operator*() const { return node_->elem; }
        Iterator& operator++() {
            node_ = node_->next;
            return *this;
        }
        Iterator operator++(int) {
            Iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const Iterator&) const = default;

      private:
        const Node* node_;
    };

    GW_LIST_BASE() = default;
    ~GW_LIST_BASE() { free_nodes(); }
    GW_LIST_BASE(const GW_LIST_BASE&) = delete;
    GW_LIST_BASE& operator=(const GW_LIST_BASE&) = delete;

    [[nodiscard]] int get_count() const { return count; }
    [[nodiscard]] bool is_empty() const { return head == nullptr; }

    [[nodiscard]] Iterator begin() const { return Iterator(head); }
    [[nodiscard]] Iterator end() const { return Iterator(); }

    /// Starts a traversal: the first element, or null (and the cursor unchanged) when the list is empty.
    T* get_first() {
        if (head == nullptr) return nullptr;
        cursor = head->next;
        return head->elem;
    }

    /// The element under the cursor, which moves on; null when the traversal is finished. There is one
    /// cursor, so traversals of the same list cannot be nested; use the iterators for that.
    T* get_next() {
        if (cursor == nullptr) return nullptr;
        T* elem = cursor->elem;
        cursor = cursor->next;
        return elem;
    }

    /// The element at `pos`, or null unless 1 <= pos <= count. Does not move the cursor.
    [[nodiscard]] T* get_elem_at_pos(int pos) const {
        Node* node = node_at(pos);
        return node != nullptr ? node->elem : nullptr;
    }

    /// Unlinks the node at `pos` and returns its element; null (and nothing removed) unless 1 <= pos <=
    /// count.
    T* zap_elem_at_pos(int pos) {
        if (pos < 1 || pos > count || head == nullptr) return nullptr;
        Node* before = pos == 1 ? nullptr : node_at(pos - 1);
        return unlink_after(before);
    }

    /// Removes the first node whose element satisfies `e->equal(element)` and returns that element, or null.
    T* zap_elem(T* e) {
        Node* before = nullptr;
        for (Node* node = head; node != nullptr; before = node, node = node->next) {
            if (e->equal(node->elem)) return unlink_after(before);
        }
        return nullptr;
    }

    /// Removes every node that `zap_elem(e)` finds; returns how many.
    int del_elem_all(T* e) {
        int removed = 0;
        while (zap_elem(e) != nullptr) ++removed;
        return removed;
    }

    /// Removes every node. The elements stay with their owner.
    void clear() {
        free_nodes();
        count = 0;
        head = tail = cursor = nullptr;
        changed();
    }

    /// List subtraction: removes, for every element of `other`, all elements equal to it. Moves `other`'s
    /// cursor.
    GW_LIST_BASE& operator-=(GW_LIST_BASE& other) {
        for (T* e = other.get_first(); e != nullptr; e = other.get_next()) del_elem_all(e);
        return *this;
    }

    /// Calls every element's `print`, in list order.
    void print(const char* prefix, GW_FILE* file) const {
        for (T* e : *this) e->print(prefix, file);
    }

  protected:
    /// Links a new node for `e` after `before`, or as the first one when `before` is null; returns the node.
    Node* link_after(Node* before, T* e) {
        Node*& slot = before != nullptr ? before->next : head;
        slot = new Node{slot, e};
        if (tail == before) tail = slot;
        ++count;
        changed();
        return slot;
    }

    [[nodiscard]] Node* node_at(int pos) const {
        if (pos < 1 || pos > count || head == nullptr) return nullptr;
        Node* node = head;
        int at = 1;
        if (memo_node != nullptr && memo_pos <= pos) {
            node = memo_node;
            at = memo_pos;
        }
        for (; at < pos && node->next != nullptr; ++at) node = node->next;
        if (at != pos) return nullptr;
        memo_node = node;
        memo_pos = pos;
        return node;
    }

    int count = 0;
    Node* head = nullptr;
    Node* tail = nullptr;
    Node* cursor = nullptr;
    /// Incremented with every change of the structure.
    unsigned long revision = 0;

  private:
    T* unlink_after(Node* before) {
        Node*& slot = before != nullptr ? before->next : head;
        const std::unique_ptr<Node> node(slot);
        slot = node->next;
        if (tail == node.get()) tail = before;
        if (cursor == node.get()) cursor = node->next;
        --count;
        changed();
        return node->elem;
    }

    void free_nodes() {
        for (Node* node = head; node != nullptr;) {
            const std::unique_ptr<Node> dead(node);
            node = node->next;
        }
    }

    void changed() {
        ++revision;
        memo_node = nullptr;
    }

    mutable Node* memo_node = nullptr;
    mutable int memo_pos = 0;
};

/// Adds appending and positional insertion.
template <class T>
class GW_LIST : public GW_LIST_BASE<T> {
  public:
    GW_LIST() = default;
    /// A shallow copy: both lists hold the same elements.
    explicit GW_LIST(const GW_LIST_BASE<T>* source) {
        for (T* e : *source) append(e);
    }

    /// Links `e` at the end; returns 1.
    int append(T* e) {
        this->link_after(this->tail, e);
        return 1;
    }

    /// Links `e` after position `pos`; 0 means before the first. Returns 1, or 0 for a position outside
    /// 0..count.
    int insert_after_pos(int pos, T* e) {
        if (pos < 0 || pos > this->count) return 0;
        this->link_after(pos == 0 ? nullptr : this->node_at(pos), e);
        return 1;
    }
};

/// How elements of type `T` are ordered in a sorted list; a type whose key is not its own `compare`, or may
/// change while it is in a list, specialises this.
template <class T>
struct GW_SORT_KEY {
    static int compare(const T& a, const T& b) { return a.compare(&b); }
    /// Incremented whenever the key of any `T` may have changed.
    static unsigned long generation() { return 0; }
};

/// Adds ordered insertion. Kept: of equal names the newest comes first. This is so in ascending and in
/// descending lists.
template <class T>
class GW_SORTED_LIST : public GW_LIST_BASE<T> {
    using Node = typename GW_LIST_BASE<T>::Node;

  public:
    /// `descending` 0 sorts ascending, any other value descending.
    explicit GW_SORTED_LIST(int descending) : index_(GoesBefore{descending != 0}) {}
    GW_SORTED_LIST(const GW_LIST_BASE<T>* source, int descending) : GW_SORTED_LIST(descending) {
        for (T* e : *source) insert(e);
    }

    /// Whether `new_elem` is placed before `cur`.
    [[nodiscard]] int compare(T* new_elem, T* cur) const {
        return index_.key_comp().order(new_elem, cur) <= 0 ? 1 : 0;
    }

    /// Inserts `e` before the first element for which `compare(e, element)` is 1; returns 1.
    int insert(T* e) {
        if (index_state_ != state()) rebuild_index();
        if (!index_valid_) {
            insert_by_walking(e);
            return 1;
        }
        const auto next = index_.lower_bound(e);
        Node* before = next == index_.begin() ? nullptr : *std::prev(next);
        index_.insert(next, this->link_after(before, e));
        index_state_ = state();
        return 1;
    }

    /// Inserts the elements one after the other into a list that is empty; they are sorted once.
    void insert_all(std::vector<T*> elements) {
        std::reverse(elements.begin(), elements.end());  // of equal ones the newest comes first
        take_sorted(std::move(elements));
    }

    /// Puts the elements into the order of their keys, as they are now. Equal ones keep their order.
    void sort_again() {
        std::vector<T*> elements(this->begin(), this->end());
        this->clear();
        take_sorted(std::move(elements));
    }

    /// Changes whenever an index over the elements may have gone out of date.
    [[nodiscard]] gw::ListState state() const { return {this->revision, GW_SORT_KEY<T>::generation()}; }

  private:
    struct GoesBefore {
        using is_transparent = void;
        bool descending;

        int order(T* a, T* b) const {
            const int result = GW_SORT_KEY<T>::compare(*a, *b);
            return descending ? -result : result;
        }
        bool operator()(const Node* a, const Node* b) const { return order(a->elem, b->elem) < 0; }
        bool operator()(const Node* a, T* b) const { return order(a->elem, b) < 0; }
        bool operator()(T* a, const Node* b) const { return order(a, b->elem) < 0; }
    };

    void take_sorted(std::vector<T*> elements) {
        std::stable_sort(elements.begin(), elements.end(),
                         [this](T* a, T* b) { return index_.key_comp().order(a, b) < 0; });
        for (T* e : elements) this->link_after(this->tail, e);
    }

    // When an element's key changed while it was in the list, the list may be unsorted. Such a list cannot
    // have an index; a new element's place is then found by walking.
    void rebuild_index() {
        index_.clear();
        index_valid_ = true;
        const Node* before = nullptr;
        for (Node* node = this->head; node != nullptr && index_valid_; node = node->next) {
            if (before != nullptr && index_.key_comp()(node, before)) index_valid_ = false;
            index_.insert(index_.end(), node);
            before = node;
        }
        if (!index_valid_) index_.clear();
        index_state_ = state();
    }

    void insert_by_walking(T* e) {
        Node* before = nullptr;
        for (Node* node = this->head; node != nullptr && compare(e, node->elem) == 0; node = node->next)
            before = node;
        this->link_after(before, e);
    }

    std::multiset<Node*, GoesBefore> index_;
    gw::ListState index_state_;
    bool index_valid_ = true;
};

namespace gw {

/// Deletes every element of `list` and empties it.
template <class List>
void delete_elements(List& list) {
    for (auto* e : list) delete e;
    list.clear();
}

/// Owns the elements of a list during a scope.
template <class List>
class ElementsOwner {
  public:
    explicit ElementsOwner(List& list) : list_(list) {}
    ~ElementsOwner() { delete_elements(list_); }
    ElementsOwner(const ElementsOwner&) = delete;
    ElementsOwner& operator=(const ElementsOwner&) = delete;

  private:
    List& list_;
};

}  // namespace gw
