#pragma once

#include "app/DisplayServers.h"
#include "foundation/Clock.h"
#include "foundation/Runtime.h"
#include "foundation/SerialQueue.h"
#include "foundation/ThreadPool.h"
#include "platform/atspi/AtspiAccessibility.h"
#include "platform/curl/CurlHttpClient.h"
#include "platform/dbus/BusFileManager.h"
#include "platform/dbus/DBusThread.h"
#include "platform/dbus/DesktopNotifications.h"
#include "platform/dbus/DesktopSignals.h"
#include "platform/dbus/NotifierHostWatch.h"
#include "platform/pocketsphinx/ClassicEngine.h"
#include "platform/pulse/PulseAudio.h"
#include "platform/pulse/PulseSoundPlayer.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/sherpa/StreamingEngine.h"
#include "platform/sndfile/SndfileCreator.h"
#include "platform/system/Installation.h"
#include "platform/system/SystemPermissions.h"
#include "speech/AudioDevices.h"
#include "state/ApplicationPaths.h"

namespace querlin {

/// All that the program reaches of the machine it runs on: an adapter for each port, in the order in which
/// they need one another. Nothing here decides anything. Made and destroyed on the main thread, after the
/// toolkit's application object.
struct Machine {
    Machine(const ApplicationPaths& paths, const Installation& own, DisplayServers::Maker makeDisplayServer);

    Runtime runtime() { return {.mainQueue = queue, .clock = clock, .background = pool}; }
    /// For all that takes time with the laws: no dictation waits for a search, a load or an update.
    Runtime lawRuntime() { return {.mainQueue = queue, .clock = clock, .background = lawPool}; }
    /// For files that change often; keeps the order of what it is given.
    Runtime storageRuntime() { return {.mainQueue = queue, .clock = clock, .background = storage}; }
    bool hasMicrophone() { return devices.systemDefaultInput().has_value(); }
    bool canRecognise();

    QtMainQueue queue;
    SystemClock clock;

    // The desktop
    std::unique_ptr<DisplayServer> display;
    /// Early: programs that start from here on show what is in their windows.
    AtspiAccessibility accessibility;
    DBusThread buses;
    DesktopSignals signals{queue, buses};
    DesktopNotifications notifications{buses};
    NotifierHostWatch notifierHost{queue, buses};
    BusFileManager fileManager{queue, buses};

    // Sound and recognition
    PulseAudio hardware{queue};
    AudioDevices devices{hardware};
    SndfileCreator audioFiles;
    PulseSoundPlayer sounds;
    ClassicEngine classic;
    StreamingEngine streaming;

    SystemPermissions access;
    CurlHttpClient http{queue};
    SerialQueue storage;
    ThreadPool lawPool{2}; ///< one thread may load while the other searches
    ThreadPool pool{2};    ///< last: what still runs on it is waited for first
};

} // namespace querlin
