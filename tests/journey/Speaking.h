#pragma once

#include <filesystem>
#include <string>

namespace querlin {

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

} // namespace querlin
