#pragma once

#include <app/Application.h>
#include <app/AppStartFinishListener.h>
#include <app/SelectionListener.h>

#include <functional>
#include <map>
#include <utility>
#include <vector>

/// A listener that changes the lists when it is called.
struct Actor : App::SelectionListener, App::AppStartFinishListener
{
    void updateSelectionListener(Doc::Document*) override { act(); }
    void updateAppStartFinishListener() override { act(); }
    std::function<void()> act;
    /// The number of the registration; 0 if it is not registered.
    int number = 0;
};

/// Listeners that add, remove and notify one another, and a model of the expected calls.
class ListenerModel
{
public:
    /// `below` returns a random number below its argument.
    explicit ListenerModel(const std::function<unsigned(unsigned)>& below) : _below(below)
    {
        for (Actor& actor : _actors)
            actor.act = [this, &actor] { called(&actor); };
    }

    /// Changes the lists of a session, then notifies them while their listeners change them.
    void play()
    {
        _budget = 60;
        change();
        notify();
    }
    /// Removes all listeners.
    void clear()
    {
        for (Actor& actor : _actors)
            remove(&actor);
    }

    int calls() const { return _calls; }
    /// Returns the first violation of the guarantees; null if there is none.
    const char* problem() const { return _problem; }

private:
    void require(bool condition, const char* problem)
    {
        if (!condition && !_problem)
            _problem = problem;
    }

    void called(const Actor* actor)
    {
        ++_calls;
        const auto expected = _registered.upper_bound(_iterations.back());
        require(expected != _registered.end(), "called after the end");
        if (_problem)
            return;
        require(actor == expected->second, "called the wrong listener");
        _iterations.back() = expected->first;
        change();
    }

    void change()
    {
        // Changes of another list must not affect the iterations.
        App::Application::instance().addSelectionListener(&_other);
        App::Application::instance().removeSelectionListener(&_other);
        for (unsigned left = _below(4); left > 0 && _budget > 0; --left, --_budget) {
            Actor* const actor = &_actors[_below(20)];
            const unsigned action = _below(9);
            if (action < 4)
                add(actor);
            else if (action < 8)
                remove(actor);
            else if (_iterations.size() < 4)
                notify();
        }
    }

    void add(Actor* actor)
    {
        App::Application::instance().addStartFinishListener(actor);
        if (!actor->number) {
            actor->number = ++_lastNumber;
            _registered.emplace(actor->number, actor);
        }
    }

    void remove(Actor* actor)
    {
        App::Application::instance().removeStartFinishListener(actor);
        _registered.erase(std::exchange(actor->number, 0));
    }

    void notify()
    {
        _iterations.push_back(0);
        App::Application::instance().notifyStartFinishListener();
        require(_registered.upper_bound(_iterations.back()) == _registered.end(),
                "an iteration ended too early");
        _iterations.pop_back();
    }

    const std::function<unsigned(unsigned)> _below;
    std::vector<Actor> _actors = std::vector<Actor>(20);
    Actor _other;
    /// The registered listeners, by the number of their registration. An iteration next calls the
    /// listener with the smallest number above the number last called.
    std::map<int, Actor*> _registered;
    std::vector<int> _iterations; ///< the number last called, innermost iteration last
    int _lastNumber = 0;
    int _budget = 0;
    int _calls = 0;
    const char* _problem = nullptr;
};
