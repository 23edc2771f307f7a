// Parsing a trace control string into its settings.
#include "trace/control.h"

#include <cstdlib>
#include <sstream>

namespace tql::trace {

namespace {

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

} // namespace

Settings parse_control(const std::string& given)
{
    const std::string control = given.compare(0, 2, "-#") == 0 ? given.substr(2) : given;
    Settings settings;
    for (const std::string& flag : split(control, ':')) {
        if (flag.empty()) {
            continue;
        }
        std::vector<std::string> values = split(flag, ',');
        values.erase(values.begin());
        switch (flag[0]) {
        case 'd':
            settings.debug = true;
            settings.keywords = values;
            break;
        case 't':
            settings.trace = true;
            settings.max_depth = values.empty() ? 0 : std::atoi(values[0].c_str());
            break;
        case 'f':
            settings.functions = values;
            break;
        case 'F':
            settings.file = true;
            break;
        case 'L':
            settings.line = true;
            break;
        case 'n':
            settings.depth = true;
            break;
        case 'P':
            settings.process = true;
            break;
        case 'o':
            settings.output = values.empty() ? std::string() : values[0];
            break;
        case 'g':
            settings.profile = true;
            break;
        default:
            break;
        }
    }
    return settings;
}

} // namespace tql::trace
