#pragma once

#include <QList>

#include <algorithm>
#include <memory>
#include <vector>

/// Functions for the listener lists and the two registries: plain `QList`s of pointers in order of
/// registration, without nulls or duplicates. A list does not own its entries.
///
/// `forEach` calls a member function of every entry, in order. The called objects may change the
/// list, also from nested iterations. The guarantees are:
///
/// - an entry that was registered before the iteration reached its position, and still is, is
///   called once;
/// - an entry that is removed before its turn is not called;
/// - an entry that is added is called in the same iteration, after the others;
/// - no object is called twice in one iteration, not even if it is removed and added again. A new
///   object at the address of one that was called and destroyed is another object if the list was
///   notified with `removeDestroyed`.
///
/// Each list must have an element type of its own and be used by one thread at a time: a change of
/// the list adjusts the active iterations over its element type.
///
/// Typical use:
///
///     void Registry::add(Entry* entry) { PointerList::add(_entries, entry); }
///     void Registry::remove(Entry* entry) { PointerList::remove(_entries, entry); }
///     void Registry::startAll() { PointerList::forEach<&Entry::start>(_entries); }
///
/// During an iteration, change the list with `add` and `remove` only, and do not destroy it.
namespace App::PointerList {

/// The position of an active iteration over the list of `T`. The active iterations over a type are
/// linked, so that every change of the list can adjust all of them.
template <typename T>
class Iteration
{
public:
    Iteration() : _p_outer(_p_innermost) { _p_innermost = this; }
    Iteration(const Iteration&) = delete;
    Iteration& operator=(const Iteration&) = delete;
    ~Iteration() { _p_innermost = _p_outer; }

    /// Adjusts the active iterations after an entry has been appended to the list.
    static void entryAdded()
    {
        for (Iteration* each = _p_innermost; each; each = each->_p_outer)
            each->listChanged = true;
    }
    /// Adjusts the active iterations after an entry has been removed from `index`.
    static void entryRemoved(T* entry, int index)
    {
        for (Iteration* each = _p_innermost; each; each = each->_p_outer) {
            each->listChanged = true;
            if (index >= each->next)
                continue;
            --each->next;
            if (!each->_removed)
                each->_removed.reset(new std::vector<T*>);
            each->_removed->push_back(entry);
        }
    }
    /// Adjusts the active iterations after an entry has been destroyed.
    static void entryDestroyed(T* entry)
    {
        for (Iteration* each = _p_innermost; each; each = each->_p_outer) {
            if (each->_removed) {
                std::vector<T*>& removed = *each->_removed;
                removed.erase(std::remove(removed.begin(), removed.end(), entry), removed.end());
            }
        }
    }

    /// Continues after a change of the list: advances `next` beyond the entries that were called
    /// before they were removed and added again.
    Q_NEVER_INLINE void resume(const QList<T*>& list)
    {
        // After a removal, each entry has to be checked.
        listChanged = _removed != nullptr;
        while (_removed && next < list.size() &&
               std::find(_removed->cbegin(), _removed->cend(), list.at(next)) != _removed->cend())
            ++next;
    }

    /// The index of the entry to call next.
    int next = 0;
    /// Set by every change of the list.
    bool listChanged = false;

private:
    struct Delete
    {
        Q_NEVER_INLINE void operator()(std::vector<T*>* entries) const { delete entries; }
    };

    /// The entries that were called and then removed. Null if there are none: an iteration without
    /// removals must not take longer.
    std::unique_ptr<std::vector<T*>, Delete> _removed;

    static inline Iteration* _p_innermost = nullptr;

    /// The iteration that this one is nested in, or null.
    Iteration* const _p_outer;
};

/// Appends `entry`; returns false, and does nothing, if it is null or already in the list.
template <typename T>
bool add(QList<T*>& list, T* entry)
{
    if (!entry || list.contains(entry))
        return false;
    list.append(entry);
    Iteration<T>::entryAdded();
    return true;
}

/// Removes `entry`; does nothing if it is not in the list. The other entries keep their order.
template <typename T>
void remove(QList<T*>& list, T* entry)
{
    const int index = int(list.indexOf(entry));
    if (index < 0)
        return;
    list.removeAt(index);
    Iteration<T>::entryRemoved(entry, index);
}

/// Removes `entry`, which is being destroyed; does nothing if it is not in the list.
template <typename T>
void removeDestroyed(QList<T*>& list, T* entry)
{
    remove(list, entry);
    Iteration<T>::entryDestroyed(entry);
}

/// Calls `function` of every entry, in order, with `arguments`. The arguments are references: each
/// call gets the values that they have at that time.
template <auto function, typename T, typename... Arguments>
Q_ALWAYS_INLINE void forEach(const QList<T*>& list, const Arguments&... arguments)
{
    Iteration<T> iteration;
    while (iteration.next < list.size()) {
        // Until the list changes, its entries, its end and the position stay in registers: reading
        // them again in every step would take as long as the call.
        const auto entries = list.constBegin();
        const int end = int(list.size());
        int index = iteration.next;
        do {
            iteration.next = index + 1;
            (entries[index]->*function)(arguments...);
            ++index;
        } while (index < end && !iteration.listChanged);
        if (!iteration.listChanged)
            return;
        iteration.resume(list);
    }
}

} // namespace App::PointerList
