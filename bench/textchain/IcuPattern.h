#pragma once

#include <string>
#include <vector>

namespace querlin {

struct CompiledExpression {
    std::string expression;
    bool ignoresCase = false;
};

/// All expressions that the peer's chain has compiled so far, in order.
const std::vector<CompiledExpression>& compiledExpressions();

} // namespace querlin
