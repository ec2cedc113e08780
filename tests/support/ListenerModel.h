#pragma once

#include <app/Application.h>
#include <app/AppStartFinishListener.h>
#include <app/SelectionListener.h>

#include <functional>
#include <map>
#include <utility>
#include <vector>

/// Acts on the lists that it is called from.
struct Actor : App::SelectionListener, App::AppStartFinishListener
{
    void updateSelectionListener(Doc::Document*) override { act(); }
    void updateAppStartFinishListener() override { act(); }
    std::function<void()> act;
    /// Its place among all registrations, or 0 without one.
    int number = 0;
};

/// Listeners that are added, removed and told by one another, and who has to be told when.
class ListenerModel
{
public:
    /// `below` draws each next number below its argument.
    explicit ListenerModel(const std::function<unsigned(unsigned)>& below) : _below(below)
    {
        for (Actor& actor : _actors)
            actor.act = [this, &actor] { called(&actor); };
    }

    /// Changes the lists of a session, then tells them, while they go on changing.
    void play()
    {
        _budget = 60;
        change();
        notify();
    }
    /// Takes all listeners off the lists.
    void clear()
    {
        for (Actor& actor : _actors)
            remove(&actor);
    }

    int calls() const { return _calls; }
    /// What went wrong first, or null.
    const char* problem() const { return _problem; }

private:
    void require(bool holds, const char* problem)
    {
        if (!holds && !_problem)
            _problem = problem;
    }

    void called(const Actor* actor)
    {
        ++_calls;
        const auto expected = _registered.upper_bound(_walks.back());
        require(expected != _registered.end(), "called after the end");
        if (_problem)
            return;
        require(actor == expected->second, "another listener's turn");
        _walks.back() = expected->first;
        change();
    }

    void change()
    {
        // What happens to another list is none of the walks' business.
        App::Application::instance().addSelectionListener(&_other);
        App::Application::instance().removeSelectionListener(&_other);
        for (unsigned left = _below(4); left > 0 && _budget > 0; --left, --_budget) {
            Actor* const actor = &_actors[_below(20)];
            const unsigned action = _below(9);
            if (action < 4)
                add(actor);
            else if (action < 8)
                remove(actor);
            else if (_walks.size() < 4)
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
        _walks.push_back(0);
        App::Application::instance().notifyStartFinishListener();
        require(_registered.upper_bound(_walks.back()) == _registered.end(),
                "a walk ended too early");
        _walks.pop_back();
    }

    const std::function<unsigned(unsigned)> _below;
    std::vector<Actor> _actors = std::vector<Actor>(20);
    Actor _other;
    /// Registrations with rising numbers. The next one that a walk calls is the one with the
    /// smallest number above that of the last one it called.
    std::map<int, Actor*> _registered;
    std::vector<int> _walks; ///< the number last called, innermost walk last
    int _lastNumber = 0;
    int _budget = 0;
    int _calls = 0;
    const char* _problem = nullptr;
};
