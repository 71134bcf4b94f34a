#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace querlin {

/// What a stage makes of a text.
struct Row {
    std::string text;
    std::string expected;
    const char* reason;
};

template<class Stage>
void expectAll(Stage stage, const std::vector<Row>& rows) {
    for (const auto& [text, expected, reason] : rows) EXPECT_EQ(stage(text), expected) << reason;
}

} // namespace querlin
