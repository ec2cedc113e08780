#pragma once

#include <QList>

/// What the nine listener lists and the two registries have in common: a plain `QList` of pointers
/// in order of registration, with no null and no duplicate in it, that owns nothing.
///
/// A walk calls every entry in order, and keeps its promise whatever the called objects add to the
/// list and remove from it meanwhile, from walks inside the walk too:
///
/// - an entry that was there before the walk reached its place, and still is, is called once;
/// - an entry that is removed before its turn is not called;
/// - an entry that is added during the walk is called in the same walk, after the others. One that
///   is removed and added again is such an entry, whether it has been called before or not.
///
/// Typical use:
///
///     void Registry::add(Entry* entry) { PointerList::add(_entries, entry); }
///     void Registry::remove(Entry* entry) { PointerList::remove(_entries, entry); }
///     void Registry::startAll()
///     {
///         PointerList::walk(_entries, [](Entry* entry) { entry->start(); });
///     }
///
/// While a list is being walked, change it with `add` and `remove` only, on the thread that walks,
/// and do not destroy it.
namespace App::PointerList {

/// A walk under way: where it stands. The walks of a thread know of each other, so that whoever
/// removes an entry sets right every walk that is past it. Walking therefore costs nothing but
/// reading the end afresh before each step, and the list is never copied.
class Walk
{
public:
    explicit Walk(const void* list);
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk();

    /// Tells the walks of `list` that the entry at `index` is gone.
    static void entryRemoved(const void* list, int index);

    /// The place of the entry to call next.
    int next = 0;

private:
    const void* _list;
    /// The walk inside which this one takes place, of whichever list.
    Walk* _p_outer;
};

/// Appends `entry`, unless it is null or in the list already; tells whether it did.
template <typename T>
bool add(QList<T*>& list, T* entry)
{
    if (!entry || list.contains(entry))
        return false;
    list.append(entry);
    return true;
}

/// Removes `entry` if it is in the list; the others keep their order.
template <typename T>
void remove(QList<T*>& list, T* entry)
{
    const int index = list.indexOf(entry);
    if (index < 0)
        return;
    list.removeAt(index);
    Walk::entryRemoved(&list, index);
}

/// Calls `call` with every entry, in order.
template <typename T, typename Call>
void walk(const QList<T*>& list, Call call)
{
    Walk walk(&list);
    while (walk.next < list.size())
        call(list.at(walk.next++));
}

} // namespace App::PointerList
