// Everything that crosses threads. The device side (reading thread, watchdog) and the Creo side (Creo's user-interface
// thread, the generating thread of a first start) know this and not each other. The threads of the device side hold it
// in shared ownership, because the plug-in may have to leave one of them behind inside the driver library.
//
// Each value is one word and the latest wins: there is no queue and no lock. A later command overwrites one that was
// not consumed yet, and a tick may see axes of two reads.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct HandOver {
    static constexpr std::int32_t kNoFunction = -1;
    static constexpr std::int32_t kNoEvent = 0;
    static constexpr std::int32_t kUnknownMode = -1;
    static constexpr double kProgressNotStarted = -1.0;
    static constexpr double kProgressDone = 1.0;

    // --- Device side to Creo side ---

    // Whether the daemon answered when it was last asked. Written by whoever connects or checks: Creo's thread at
    // first, then the watchdog. Read on Creo's thread.
    std::atomic<bool> isConnected{false};

    // An axis and the number of losses before the read that brought it, in one word. So a read that was going on when
    // the connection was lost can store what it likes, whenever it likes: nobody takes it, and nothing need be locked.
    class Axis {
      public:
        explicit Axis(const std::atomic<std::uint16_t>& losses) : mLosses(losses) {}

        void store(std::int16_t value, std::uint16_t losses) {
            mWord = static_cast<std::uint32_t>(losses) << 16 | static_cast<std::uint16_t>(value);
        }
        // 0 when it came over a connection that was lost since.
        // NOLINTNEXTLINE(google-explicit-constructor): read as the number that it is
        operator std::int16_t() const {
            const std::uint32_t word = mWord;
            return word >> 16 == mLosses ? static_cast<std::int16_t>(word & 0xffffu) : std::int16_t{0};
        }

      private:
        const std::atomic<std::uint16_t>& mLosses;
        std::atomic<std::uint32_t> mWord{0};
    };

    // Six axes in the driver's order and units, and two extras that nobody interprets. Written by the reading thread
    // with each successful read; read on Creo's thread with each pass over the motion. The watchdog makes the axes 0
    // when it loses the connection.
    struct Motion {
        std::atomic<std::uint16_t> losses{0};  // connections lost so far; written by the watchdog
        Axis tx{losses}, ty{losses}, tz{losses}, rx{losses}, ry{losses}, rz{losses};
        std::atomic<std::int32_t> extra1{0}, extra2{0};

        // `lossesBefore`: as they were before the read began.
        void store(const std::array<std::int16_t, 6>& values, std::uint16_t lossesBefore) {
            Axis* const axes[] = {&tx, &ty, &tz, &rx, &ry, &rz};
            for (std::size_t i = 0; i < values.size(); ++i) axes[i]->store(values[i], lossesBefore);
        }
        // What is stored becomes 0, too: the count comes round some day.
        void lose() {
            const auto now = static_cast<std::uint16_t>(losses + 1);
            losses = now;
            store({}, now);
        }
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

    // Progress of loading and generating the menu file: negative = not started, below 1.0 = generating, 1.0 = at its
    // end, whatever that end is. Written on Creo's thread and by the generating thread; the reading thread shows it
    // until it is 1.0 and never looks again.
    std::atomic<double> menuFileProgress{kProgressNotStarted};

    // The plug-in is being ended. Set once on Creo's thread, never cleared; watchdog, reading thread and generating
    // thread leave their loops, and the timer is not armed again. A thread that finds it set when a driver call
    // returns may have been left behind, and does nothing any more.
    std::atomic<bool> isEnding{false};

    // Names of the modes, by mode value; there are none until the menu file was read. Creo's thread.
    using Names = std::vector<std::string>;
    void publishModeNames(Names names) {
        mAllModeNames.push_back(std::make_unique<const Names>(std::move(names)));
        mModeNames.store(mAllModeNames.back().get(), std::memory_order_release);
    }

    // Name of the current mode, "Default" when it has none. Valid as long as this object. Any thread.
    std::string_view modeName() const {
        const Names* names = mModeNames.load(std::memory_order_acquire);
        const std::int32_t value = mode.load(std::memory_order_relaxed);
        if (names == nullptr || value < 0 || static_cast<std::size_t>(value) >= names->size()) return "Default";
        return (*names)[static_cast<std::size_t>(value)];
    }

  private:
    std::atomic<const Names*> mModeNames{nullptr};            // a list never changes once it stands here
    std::vector<std::unique_ptr<const Names>> mAllModeNames;  // all there were; Creo's thread
};
