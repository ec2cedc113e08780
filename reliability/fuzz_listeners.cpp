#include "Fuzz.h"

#include <support/Session.h>

#include <app/Application.h>
#include <app/AppStartFinishListener.h>

#include <QCoreApplication>

#include <fuzzer/FuzzedDataProvider.h>

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace {

class Model;

/// A listener that changes the lists when it is called.
struct Actor : App::AppStartFinishListener
{
    Actor(Model& model, int index) : _model(model), _index(index) {}
    void updateAppStartFinishListener() override;

private:
    Model& _model;
    const int _index;
};

/// Listeners that add, remove, destroy and notify one another, and a model of the expected calls.
class Model
{
public:
    explicit Model(FuzzedDataProvider& choices) : _choices(choices)
    {
        for (int i = 0; i < count; ++i)
            _actors[i].emplace(*this, i);
    }

    /// Changes the lists of a session, then notifies them while their listeners change them.
    void play()
    {
        _budget = 60;
        change();
        notify();
    }

    void called(int index)
    {
        Iteration& iteration = _iterations.back();
        const auto expected = next(iteration);
        require(expected != _registered.end(), "called after the end");
        require(index == expected->second, "called the wrong listener");
        iteration.lastNumber = expected->first;
        iteration.called.insert(index);
        change();
    }

private:
    static constexpr int count = 20;

    struct Iteration
    {
        int lastNumber = 0;
        std::set<int> called;
    };

    unsigned below(unsigned end) { return _choices.ConsumeIntegralInRange(0U, end - 1); }
    /// Returns the listener that the iteration calls next: the one with the smallest number of
    /// registration above the number last called that has not been called.
    std::map<int, int>::const_iterator next(const Iteration& iteration) const
    {
        auto each = _registered.upper_bound(iteration.lastNumber);
        while (each != _registered.end() && iteration.called.count(each->second) > 0)
            ++each;
        return each;
    }

    void change()
    {
        for (unsigned left = below(4); left > 0 && _budget > 0; --left, --_budget) {
            const auto index = static_cast<int>(below(count));
            const unsigned action = below(10);
            if (action < 4)
                add(index);
            else if (action < 8)
                remove(index);
            else if (action < 9)
                destroy(index);
            else if (_iterations.size() < 4)
                notify();
        }
    }

    void add(int index)
    {
        App::Application::instance().addStartFinishListener(&*_actors[index]);
        if (_numbers[index] == 0) {
            _numbers[index] = ++_lastNumber;
            _registered.emplace(_lastNumber, index);
        }
    }

    void remove(int index)
    {
        App::Application::instance().removeStartFinishListener(&*_actors[index]);
        _registered.erase(std::exchange(_numbers[index], 0));
    }

    /// Destroys a listener, and creates another one at the same address.
    void destroy(int index)
    {
        _actors[index].emplace(*this, index);
        _registered.erase(std::exchange(_numbers[index], 0));
        for (Iteration& each : _iterations)
            each.called.erase(index);
    }

    void notify()
    {
        _iterations.emplace_back();
        App::Application::instance().notifyStartFinishListener();
        require(next(_iterations.back()) == _registered.end(), "an iteration ended too early");
        _iterations.pop_back();
    }

    FuzzedDataProvider& _choices;
    std::optional<Actor> _actors[count];
    /// The number of each listener's registration; 0 if it is not registered.
    int _numbers[count] = {};
    /// The registered listeners, by the number of their registration.
    std::map<int, int> _registered;
    std::vector<Iteration> _iterations; ///< innermost last
    int _lastNumber = 0;
    int _budget = 0;
};

void Actor::updateAppStartFinishListener()
{
    _model.called(_index);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments)
{
    static QCoreApplication application(*count, *arguments);
    return 0;
}

/// The input decides which listeners are added, removed, destroyed and notified during
/// notifications.
extern "C" int LLVMFuzzerTestOneInput(const uchar* data, std::size_t size)
{
    const Session session;
    FuzzedDataProvider choices(data, size);
    Model model(choices);
    while (choices.remaining_bytes() > 0)
        model.play();
    return 0;
}
