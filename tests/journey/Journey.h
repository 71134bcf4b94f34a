#pragma once

#include "../session/atspi/Fields.h"
#include "RunningQuerlin.h"
#include "ShownWords.h"
#include "support/TempFolder.h"

#include <memory>
#include <optional>

namespace querlin {

/// The hold key of a fresh installation, by its place on the keyboard.
inline constexpr int holdKey = 105;

/// A sentence as a voice says it that the starter model knows, between two short pauses, ready to be played. The text
/// is written as the model's own: numbers in words, letters one by one.
class Spoken {
public:
    explicit Spoken(const std::string& sentence);
    ~Spoken();
    Spoken(const Spoken&) = delete;
    Spoken& operator=(const Spoken&) = delete;

    /// Into the microphone of the desktop, or the one that hears this output; returns when all of it has been heard.
    void play(const std::string& output = "gesprochen") const;

private:
    std::filesystem::path file_; ///< samples of 16 bits
};

/// One user's way through dictations: a program that takes text, the hold key, a voice. What is on the clipboard
/// beforehand is looked for afterwards; the program must end as it should each time.
struct Journey : FieldsTest {
    TempFolder folder;
    /// As most desktops have one.
    std::optional<Program> tray;
    RunningQuerlin querlin;

    void SetUp() override;
    void TearDown() override;

    /// With what a user has settled long ago; the text of the user's clipboard is there.
    void startQuerlin();
    /// A program whose field with the cursor comes to be described like this, as by `look`.
    std::unique_ptr<Program> open(std::vector<std::string> command, const std::string& field);
    /// Waits for the field with the cursor, and until its program has nothing else to do any more.
    testing::AssertionResult comesToShow(const std::string& field);

    static bool hasTray();

    // The hand and the voice

    static void press();
    static void release();
    /// Holds the key until the overlay tells that the microphone is open.
    static testing::AssertionResult beginRecording();
    /// Holds the key, says it, and lets go.
    static void dictate(const std::string& sentence);
    /// As `dictate`, without letting go, and waits until the program has the words on the disk.
    void say(const std::string& sentence) const;

    // What is to be seen

    static bool overlayIsShown();
    static testing::AssertionResult overlayGoes();
    /// All words in the program's windows, the overlay's among them.
    std::string words() const { return wordsShownBy(querlin.id()); }
    static std::string clipboard();
    static void copy(const std::string& text);
    /// All that has been shown since the beginning.
    static std::string notifications();

    /// The field holds the text, and all traces of a delivered dictation are there, and no other: clipboard as before,
    /// one entry in the history, the statistics, a line in the log, the overlay gone, no recording left.
    void expectDelivered(const std::string& field, const std::string& text);
    /// The text and its recording are in the rescue folder, the user has been told with this reason, and nothing has
    /// been delivered.
    void expectRescued(const std::string& text, const std::string& reason) const;
    /// Nothing has been kept of a dictation.
    void expectNothingKept() const;

private:
    /// These and no others are in the history, the statistics and the log, and no recording is left.
    void expectBooked(const std::vector<std::string>& texts) const;
    bool answersAtOnce(const std::string& field);
};

inline constexpr auto copiedBefore = "Aus einem anderen Programm: äöü €";

} // namespace querlin
