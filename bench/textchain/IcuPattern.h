#pragma once

#include <string>
#include <vector>

namespace querlin {

struct CompiledExpression {
    std::string expression;
    bool ignoresCase = false;
};

/// Whether matchers are kept from use to use.
void keepMatchers(bool keeps);

/// All expressions that the peer's chain has compiled so far, in order.
const std::vector<CompiledExpression>& compiledExpressions();

} // namespace querlin
