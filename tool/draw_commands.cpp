// draw_commands.cpp - reads the vector commands at the end of the job file.
#include "tool/JobFileReader.h"

namespace morvil::tool {

namespace {

constexpr const char* kGroup = "DrawCommands";
constexpr std::string_view kOpen = "<BegGroup: DrawCommands>";
constexpr std::string_view kClose = "<EndGroup: DrawCommands>";

// The numbers of "<Keyword: a;b;c>", one after another.
class Fields {
  public:
    explicit Fields(std::string_view text) : m_rest(text) {}
    [[nodiscard]] bool atEnd() const { return m_done; }
    std::optional<std::string_view> next() {
        if (m_done) return std::nullopt;
        const std::size_t separator = m_rest.find(';');
        const std::string_view field = m_rest.substr(0, separator);
        m_done = separator == std::string_view::npos;
        if (!m_done) m_rest.remove_prefix(separator + 1);
        return field;
    }
    std::optional<std::int32_t> number() {
        const auto field = next();
        return field ? wholeNumber<std::int32_t>(*field) : std::nullopt;
    }

  private:
    std::string_view m_rest;
    bool m_done = false;
};

bool readColour(Fields& fields, Vector& vector) {
    for (std::uint8_t& channel : vector.colour) {
        const auto value = fields.number();
        if (!value || *value < 0 || *value > 255) return false;
        channel = static_cast<std::uint8_t>(*value);
    }
    return true;
}

// count; red; green; blue; x and y of each point. Empty on success, else the rule that is broken.
const char* readPoints(std::string_view values, Vector& vector) {
    Fields fields(values);
    const auto count = fields.number();
    if (!count || *count < 1) return "the point count is a positive whole number";
    if (!readColour(fields, vector)) return "the colour is three whole numbers from 0 to 255";
    while (!fields.atEnd()) {
        const auto value = fields.number();
        if (!value) return "coordinates are 32-bit whole numbers";
        vector.coordinates.push_back(*value);
    }
    if (vector.coordinates.size() != 2 * static_cast<std::size_t>(*count)) return "there are as many points as the count says";
    return nullptr;
}

// red; green; blue; three whole coordinates; two values with two decimals; a whole number.
const char* readArc(std::string_view values, Vector& vector) {
    Fields fields(values);
    if (!readColour(fields, vector)) return "the colour is three whole numbers from 0 to 255";
    for (int i = 0; i < 3; ++i) {
        const auto value = fields.number();
        if (!value) return "an arc has three whole coordinates";
        vector.coordinates.push_back(*value);
    }
    for (double& value : vector.arcValues) {
        const auto field = fields.next();
        const auto number = field ? fixedNumber(*field, 2) : std::nullopt;
        if (!number) return "an arc has two values with two decimals";
        value = *number;
    }
    const auto last = fields.number();
    if (!last || !fields.atEnd()) return "an arc ends in one whole number";
    vector.arcFlag = *last;
    return nullptr;
}

struct Command {
    std::string_view start;
    VectorKind kind;
    const char* (*read)(std::string_view, Vector&);
};

constexpr Command kCommands[] = {{"<DrawPolygon: ", VectorKind::Polygon, &readPoints},
                                 {"<DrawBezier: ", VectorKind::Bezier, &readPoints},
                                 {"<DrawArc: ", VectorKind::Arc, &readArc}};

void readCommand(JobFileReader& reader, std::string_view line) {
    for (const Command& command : kCommands) {
        if (!line.starts_with(command.start) || !line.ends_with('>')) continue;
        Vector vector;
        vector.kind = command.kind;
        vector.position = reader.position();
        const char* const broken = command.read(line.substr(command.start.size(), line.size() - command.start.size() - 1), vector);
        if (broken != nullptr) return reader.note(reader.position(), kGroup, broken, line);
        reader.job().vectors.push_back(std::move(vector));
        return;
    }
    reader.note(reader.position(), kGroup, "a line is a DrawPolygon, DrawBezier or DrawArc command", line);
}

}  // namespace

void readDrawCommands(JobFileReader& reader) {
    if (!reader.takeLine(kOpen, kGroup)) {
        reader.expected(kGroup, "the line \"<BegGroup: DrawCommands>\"");
        // A damaged section before it must not hide the commands.
        const std::size_t found = reader.text().find("<BegGroup: DrawCommands>\r\n", reader.position());
        if (found == std::string_view::npos) return;
        reader.moveTo(found);
        reader.skipLine(kGroup);
    }
    while (!reader.atEnd()) {
        const std::string_view line = *reader.peekLine();
        if (line == kClose) {
            reader.skipLine(kGroup);
            if (!reader.atEnd()) reader.expected(kGroup, "nothing stands behind \"<EndGroup: DrawCommands>\"");
            return;
        }
        readCommand(reader, line);
        reader.skipLine(kGroup);
    }
    reader.note(reader.position(), kGroup, "the last line is \"<EndGroup: DrawCommands>\"", "the end of the file");
}

}  // namespace morvil::tool
