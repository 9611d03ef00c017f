// Everything that crosses threads. The device side (reading thread, watchdog) and the Creo side (Creo's user-interface
// thread, the generating thread of a first start) know this and not each other.
//
// Each value is one word and the latest wins: there is no queue and no lock. A later command overwrites one that was
// not consumed yet, and a tick may see axes of two reads.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct HandOver {
    static constexpr std::int32_t kNoFunction = -1;
    static constexpr std::int32_t kNoEvent = 0;
    static constexpr std::int32_t kUnknownMode = -1;
    static constexpr double kProgressNotStarted = -1.0;
    static constexpr double kProgressDone = 1.0;

    // --- Device side to Creo side ---

    // Six axes in the driver's order and units, and two extras that nobody interprets. Written by the reading thread
    // with each successful read; read on Creo's thread with each pass over the motion, never cleared.
    struct Motion {
        std::atomic<std::int16_t> tx{0}, ty{0}, tz{0}, rx{0}, ry{0}, rz{0};
        std::atomic<std::int32_t> extra1{0}, extra2{0};
    } motion;

    // Index of the device-button function to run. Written by the reading thread; Creo's thread puts kNoFunction back
    // once the command was run.
    std::atomic<std::int32_t> applFunction{kNoFunction};

    // Code of a pending special event. Written by the reading thread; Creo's thread puts kNoEvent back once the view
    // was set.
    std::atomic<std::int32_t> specialEvent{kNoEvent};

    // Rotation mode of the device's settings with its two flags, and the flag that asks for a refit after a standard
    // view. Written by whoever reads the device's settings: Creo's thread when it connects first, then watchdog and
    // reading thread. Creo's thread reads the context flag with each special event; nobody consults the others.
    std::atomic<std::int32_t> rotationMode{0};
    std::atomic<bool> rotationFlag1{false};
    std::atomic<bool> rotationFlag2{false};
    std::atomic<std::uint8_t> contextFlag{0};

    // --- Creo side to device side ---

    // Creo's current mode. Written on Creo's thread with each check; the reading thread looks after each read.
    std::atomic<std::int32_t> mode{kUnknownMode};

    // Names of the modes, by mode value; null until the menu file was read. Written on Creo's thread; a list never
    // changes once it stands here, and CreoProxy, which owns it, outlives the reading thread.
    using Names = std::vector<std::string>;
    std::atomic<const Names*> modeNames{nullptr};

    // Progress of loading and generating the menu file: negative = not started, below 1.0 = generating, 1.0 = at its
    // end, whatever that end is. Written on Creo's thread and by the generating thread; the reading thread shows it
    // until it is 1.0 and never looks again.
    std::atomic<double> menuFileProgress{kProgressNotStarted};

    // The plug-in is being ended. Set once on Creo's thread, never cleared; watchdog, reading thread and generating
    // thread leave their loops, and the timer is not armed again.
    std::atomic<bool> isEnding{false};

    // Name of the current mode, "Default" when it has none. Valid as long as the list of names. Any thread.
    std::string_view modeName() const {
        const Names* names = modeNames.load(std::memory_order_acquire);
        const std::int32_t value = mode.load(std::memory_order_relaxed);
        if (names == nullptr || value < 0 || static_cast<std::size_t>(value) >= names->size()) return "Default";
        return (*names)[static_cast<std::size_t>(value)];
    }
};
