// Where the plug-in stands between its start and its end. A toolkit call may dispatch messages, so Creo's two calls can
// come at any time: inside each other, and inside a callback of ours. What cannot be done at once is done as soon as
// that which is running is over, and the last call wins. Creo's thread.
#pragma once

class LifeCycle {
  public:
    // What it has done; none of these throws.
    struct Deeds {
        bool (*start)();        // false: there is no plug-in all the same
        void (*refuseStart)();  // there is a plug-in already, or will be
        void (*hurry)();        // an end waits for the callback that is running
        void (*end)();
    };

    explicit constexpr LifeCycle(const Deeds& deeds) : mDeeds(deeds) {}
    LifeCycle(const LifeCycle&) = delete;
    LifeCycle& operator=(const LifeCycle&) = delete;

    // Creo's two calls.
    void initialise() { take(Call::initialise); }
    void terminate() { take(Call::terminate); }

    // Around each callback of ours, which may come inside another: false when it must not use the plug-in, and nothing
    // is to be left then.
    bool enter();
    void leave();

    enum class State {
        off,
        starting,
        startingToEnd,
        startingToRestart,
        on,
        inside,  // a callback is running
        insideToEnd,
        insideToRestart,
        ending,
        endingToRestart,
        unchanged  // only as what comes next
    };
    enum class Call { initialise, terminate, enter, leave, over, failed };

  private:
    void take(Call call);

    Deeds mDeeds;
    State mState = State::off;
    int mDepth = 0;  // callbacks running, one inside the other
};
