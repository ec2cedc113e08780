#pragma once

#include <QList>

/// What the listener lists and the two registries have in common: a plain `QList` of pointers in
/// order of registration, with no null and no duplicate in it, that owns nothing.
///
/// A pass calls every entry in order, and keeps its promise whatever the called objects add to the
/// list and remove from it meanwhile, from passes inside the pass too:
///
/// - an entry that was there before the pass reached its place, and still is, is called once;
/// - an entry that is removed before its turn is not called;
/// - an entry that is added during the pass is called in the same pass, after the others. One that
///   is removed and added again is such an entry, whether it has been called before or not: an
///   object that does this to itself in every call keeps the pass from ending.
///
/// The promise holds because each list has an element type of its own, and is used by one thread at
/// a time: the passes under way that a change of the list concerns are those over its type.
///
/// Typical use:
///
///     void Registry::add(Entry* entry) { PointerList::add(_entries, entry); }
///     void Registry::remove(Entry* entry) { PointerList::remove(_entries, entry); }
///     void Registry::startAll() { PointerList::callAll<&Entry::start>(_entries); }
///
/// While a pass is under way, change the list with `add` and `remove` only, and do not destroy it.
namespace App::PointerList {

/// A pass under way over the list of `T`: where it stands. The passes over a type know of each
/// other, so that whoever changes the list sets right every one of them. The list is never copied,
/// and a step of a pass asks no more than whether there was a change.
template <typename T>
class Walk
{
public:
    Walk() : _p_outer(_p_innermost) { _p_innermost = this; }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk() { _p_innermost = _p_outer; }

    /// Tells the passes that an entry was added at the end of the list.
    static void entryAdded()
    {
        for (Walk* walk = _p_innermost; walk; walk = walk->_p_outer)
            walk->changed = true;
    }
    /// Tells the passes that the entry at `index` was removed.
    static void entryRemoved(int index)
    {
        for (Walk* walk = _p_innermost; walk; walk = walk->_p_outer) {
            walk->changed = true;
            if (index < walk->next)
                --walk->next;
        }
    }

    /// The place of the entry to call next.
    int next = 0;
    /// Set by every change of the list.
    bool changed = false;

private:
    static inline Walk* _p_innermost = nullptr;

    /// The pass inside which this one takes place.
    Walk* const _p_outer;
};

/// Appends `entry`, unless it is null or in the list already; tells whether it did.
template <typename T>
bool add(QList<T*>& list, T* entry)
{
    if (!entry || list.contains(entry))
        return false;
    list.append(entry);
    Walk<T>::entryAdded();
    return true;
}

/// Removes `entry` if it is in the list; the others keep their order.
template <typename T>
void remove(QList<T*>& list, T* entry)
{
    const int index = int(list.indexOf(entry));
    if (index < 0)
        return;
    list.removeAt(index);
    Walk<T>::entryRemoved(index);
}

/// Calls `operation` of every entry, in order, with `arguments`. They are references: every call
/// gets the values that they have by then.
template <auto operation, typename T, typename... Arguments>
void callAll(const QList<T*>& list, const Arguments&... arguments)
{
    Walk<T> walk;
    while (walk.next < list.size()) {
        // Until the list changes, its entries, its end and the walk's place stay in registers: to
        // read them afresh at every step would take as long as the call.
        walk.changed = false;
        const auto entries = list.constBegin();
        const int end = int(list.size());
        for (int place = walk.next; place < end && !walk.changed; ++place) {
            walk.next = place + 1;
            (entries[place]->*operation)(arguments...);
        }
    }
}

} // namespace App::PointerList
