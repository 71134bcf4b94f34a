#include "ShownWords.h"

#include "platform/atspi/AtspiTree.h"
#include "support/Desktop.h"

namespace querlin {

namespace {

constexpr int greatestDepth = 20;

std::string nameOf(AtspiBus& bus, const AtspiReference& element) {
    const auto answer =
        bus.call(element, AtspiInterface::properties, "Get", std::chrono::seconds(1), "ss", AtspiInterface::accessible, "Name");
    const char* name = "";
    if (answer) sd_bus_message_read(answer->get(), "v", "s", &name);
    return name;
}

void collect(AtspiBus& bus, AtspiTree& tree, const AtspiReference& element, int depth, std::string& words) {
    if (const auto states = tree.states(element); !states || (*states & AtspiState::showing) == 0) return;
    if (const auto name = nameOf(bus, element); !name.empty()) words += name + '\n';
    const auto children = tree.children(element);
    if (!children || depth >= greatestDepth) return;
    for (const auto& child : *children) collect(bus, tree, child, depth + 1, words);
}

} // namespace

std::string wordsShownBy(pid_t process) {
    const auto address = shell("gdbus call --session -d org.a11y.Bus -o /org/a11y/bus -m org.a11y.Bus.GetAddress | cut -d\"'\" -f2");
    auto bus = AtspiBus::open(address, std::chrono::seconds(2));
    if (!bus) return {};
    AtspiTree tree(*bus);
    const auto applications = tree.children(atspiRoot());
    std::string words;
    for (const auto& application : applications.value_or(std::vector<AtspiReference>())) {
        if (tree.process(application.name) != process) continue;
        const auto windows = tree.children(application);
        for (const auto& window : windows.value_or(std::vector<AtspiReference>())) collect(*bus, tree, window, 0, words);
    }
    return words;
}

} // namespace querlin
