#pragma once

#include "foundation/MainQueue.h"
#include "foundation/RunLoop.h"
#include "support/Desktop.h"
#include "support/TempFolder.h"

#include <atomic>
#include <memory>
#include <optional>
#include <string>

struct sd_bus;

namespace querlin {

/// A bus of the test's own in place of the session's or the system's, which knows no services to start. Can
/// be killed and come back at the same address.
class OwnBus {
public:
    /// The name of the environment's variable that tells its address.
    explicit OwnBus(std::string variable);
    ~OwnBus();
    OwnBus(const OwnBus&) = delete;
    OwnBus& operator=(const OwnBus&) = delete;

    void start();
    void kill();

private:
    std::string socket() const { return (folder_ / "bus").string(); }

    TempFolder folder_;
    std::string variable_;
    std::string former_;
    std::optional<Program> daemon_;
};

/// A program on one of the buses: owns names and emits signals.
class Speaker {
public:
    enum class On : bool { session, system };
    explicit Speaker(On bus);
    ~Speaker();
    Speaker(const Speaker&) = delete;
    Speaker& operator=(const Speaker&) = delete;

    void own(const std::string& name);
    /// A signal with one truth value.
    void emit(const std::string& path, const std::string& interface, const std::string& member, bool value);

private:
    sd_bus* bus_ = nullptr;
};

/// The login service's stand-in, with the sessions "c1", which is our own, and "c2".
class Login {
public:
    /// Whether it tells our session by our process, or by the name in the environment alone.
    enum class Knows : bool { processes, sessions };
    explicit Login(Knows known = Knows::processes);

    void prepareFor(const std::string& what, bool begins);
    /// A method of a session: "Lock", "SetLockedHint true".
    void session(const std::string& id, const std::string& call);
    void setActive(const std::string& id, bool isActive);
    /// What it waits for: "shutdown sleep".
    std::string inhibitors();

private:
    std::string call(const std::string& path, const std::string& rest);

    Program mock_;
};

/// A main queue that counts what is posted to it.
class CountingQueue final : public MainQueue {
public:
    explicit CountingQueue(RunLoop& loop) : loop_(loop) {}
    void post(Work work) override {
        loop_.post(std::move(work));
        ++posted;
    }
    Registration after(Duration delay, Work work) override { return loop_.after(delay, std::move(work)); }

    std::atomic<int> posted = 0;

private:
    RunLoop& loop_;
};

} // namespace querlin
