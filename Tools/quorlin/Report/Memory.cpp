// The memory map: each channel is a picture of its own, so that they wrap to the width of the page.
#include <map>

#include "Packages/Analysis/MemorySlots.h"
#include "Packages/Analysis/Values.h"
#include "Packages/Standard/Texts.h"
#include "Tools/quorlin/Report/Sections.h"

namespace {

// A box as drawn, with its lines of text.
struct Box_t {
    std::string label, content, speed, part, state;
    std::string_view shape;  // its class
};

constexpr uint64_t kWidth = 176, kHeight = 92, kGap = 8;
constexpr size_t kCharacters = 23;

Box_t EmptyBox(std::string label) { return {std::move(label), {}, {}, {}, std::string(TextOf(kTextEmpty)), "empty"}; }

std::string LabelOf(const MemorySlot_t& slot) {
    return slot.locator.empty() ? Filled(kTextUnnamedSlot, {HandleText(slot.structure.Handle())}) : slot.locator;
}

std::string Joined(std::string_view first, std::string_view second, std::string_view between = " ") {
    std::string text(first);
    if (!text.empty() && !second.empty()) text.append(between);
    return text.append(second);
}

std::string StateText(const MemorySlot_t& slot) {
    switch (slot.state) {
        case MemorySlotState_t::kEmpty: return std::string(TextOf(kTextEmpty));
        case MemorySlotState_t::kDisabled: return std::string(TextOf(kTextDisabled));
        case MemorySlotState_t::kError:
            return Joined(TextOf(kTextError), slot.size ? std::string_view() : TextOf(kTextSizeUnknown), ": ");
        case MemorySlotState_t::kInstalled: return std::string(TextOf(kTextInstalled));
        default: break;
    }
    // All four words don't fit into a picture.
    if (slot.otherSize && slot.otherType && slot.otherSpeed && slot.otherPart) return std::string(TextOf(kTextUnlike));
    std::string what;
    if (slot.otherSize) what = Joined(what, TextOf(kTextOtherSize), ", ");
    if (slot.otherType) what = Joined(what, TextOf(kTextOtherType), ", ");
    if (slot.otherSpeed) what = Joined(what, TextOf(kTextOtherSpeed), ", ");
    if (slot.otherPart) what = Joined(what, TextOf(kTextOtherPart), ", ");
    return Filled(kTextDiffers, {what});
}

std::string_view ShapeOf(MemorySlotState_t state) {
    switch (state) {
        case MemorySlotState_t::kEmpty: return "empty";
        case MemorySlotState_t::kMismatched: return "differs";
        case MemorySlotState_t::kDisabled: return "disabled";
        case MemorySlotState_t::kError: return "error";
        default: return "full";
    }
}

std::string SpeedText(const MemorySlot_t& slot) {
    return slot.speed ? std::to_string(*slot.speed).append(" ").append(UnitName(Unit_t::kMTs)) : std::string();
}

Box_t BoxOf(const MemorySlot_t& slot) {
    return {LabelOf(slot),   Joined(slot.size ? SizeText(*slot.size) : std::string(), slot.type),
            SpeedText(slot), slot.part,
            StateText(slot), ShapeOf(slot.state)};
}

std::string WordsOf(const Box_t& box) {
    std::string text = box.label + ": ";
    for (const std::string* each : {&box.content, &box.speed, &box.part})
        if (!each->empty()) text.append(*each).append(", ");
    return text.append(box.state);
}

// A module with its notch, a dashed frame, a cut corner, a crossed corner, or eight corners.
void PutShape(const Box_t& box, ClHtml& html) {
    html << "<path class=\"box ";
    html.Text(box.shape) << "\" d=\"";
    if (box.shape == "error")
        html << "M14 2h148l12 12v64l-12 12H14L2 78V14z\"/><path class=\"mark\" d=\"M156 62v12m0 4v3\"/>";
    else if (box.shape == "differs")
        html << "M2 2h158l14 14v74H2z\"/><path class=\"mark\" d=\"M160 2v14h14\"/>";
    else if (box.shape == "disabled")
        html << "M2 2h172v88H2z\"/><path class=\"mark\" d=\"M148 8l20 20m0-20l-20 20\"/>";
    else if (box.shape == "full")
        html << "M2 2h172v88H94v-6h-8v6H2z\"/>";
    else
        html << "M2 2h172v88H2z\"/>";
}

void PutText(uint64_t y, std::string_view text, bool isStrong, ClHtml& html) {
    if (text.empty()) return;
    if (isStrong)
        html << "<text class=\"strong\" x=\"10\" y=\"";
    else
        html << "<text x=\"10\" y=\"";
    html.Number(y) << "\">";
    html.Text(Cut(text, isStrong ? kCharacters - 3 : kCharacters)) << "</text>";
}

// The boxes of a channel, one below the other.
void PutPicture(const std::string& title, const std::vector<Box_t>& boxes, ClHtml& html) {
    const uint64_t height = boxes.size() * (kHeight + kGap) - kGap;
    html << "<svg role=\"img\" width=\"";
    html.Number(kWidth) << "\" height=\"";
    html.Number(height) << "\" viewBox=\"0 0 ";
    html.Number(kWidth) << " ";
    html.Number(height) << "\"><title>";
    html.Text(title) << "</title><desc>";
    for (const Box_t& box : boxes) {
        html.Text(WordsOf(box)) << ". ";
    }
    html << "</desc>";
    uint64_t y = 0;
    for (const Box_t& box : boxes) {
        html << "<g transform=\"translate(0 ";
        html.Number(y) << ")\">";
        PutShape(box, html);
        uint64_t line = 18;
        for (const std::string* text : {&box.label, &box.content, &box.speed, &box.part}) {
            PutText(line, *text, text == &box.label, html);
            if (!text->empty()) line += 16;
        }
        PutText(line, box.state, false, html);
        html << "</g>";
        y += kHeight + kGap;
    }
    html << "</svg>\n";
}

// The slots of a processor or the like, by channels, in the order in which they come.
struct Column_t {
    std::string name;
    std::vector<const MemorySlot_t*> slots;
};
struct Owner_t {
    std::string name;
    std::vector<Column_t> columns;
    std::map<std::string, size_t> places;  // of columns
};

// What a slot shares a column with: its channel, or its bank. Empty for a column of its own.
std::string ColumnOf(const MemorySlot_t& slot) {
    if (!slot.place.channel.empty()) return Filled(kTextChannel, {slot.place.channel});
    return slot.sharesBank ? slot.bank : std::string();
}

std::vector<Owner_t> OwnersOf(const MemoryArray_t& array) {
    std::vector<Owner_t> owners;
    std::map<std::string, size_t> places;
    for (const MemorySlot_t& slot : array.slots) {
        const auto [place, isNew] = places.try_emplace(slot.place.owner, owners.size());
        if (isNew) owners.push_back({slot.place.owner, {}, {}});
        Owner_t& owner = owners[place->second];
        const std::string name = ColumnOf(slot);
        const auto [column, isNewColumn] = owner.places.try_emplace(name, owner.columns.size());
        if (name.empty() || isNewColumn)
            owner.columns.push_back({name, {&slot}});
        else
            owner.columns[column->second].slots.push_back(&slot);
    }
    return owners;
}

void PutOwner(const Owner_t& owner, ClHtml& html) {
    html << "<div class=slots>\n";
    for (const Column_t& column : owner.columns) {
        std::vector<Box_t> boxes;
        for (const MemorySlot_t* slot : column.slots) boxes.push_back(BoxOf(*slot));
        html << "<div>";
        if (!column.name.empty()) {
            html << "<p class=\"quiet\">";
            html.Text(column.name) << "</p>";
        }
        PutPicture(column.name.empty() ? boxes.front().label : Joined(owner.name, column.name, ", "), boxes, html);
        html << "</div>\n";
    }
    html << "</div>\n";
}

void PutList(const MemoryArray_t& array, const ClStructures& structures, const std::string& label, ClHtml& html) {
    html << "<details><summary>";
    html.Text(TextOf(kTextAsList)) << "</summary>\n";
    BeginTable(label, {kTextSlot, kTextGroup, kTextState, kTextSize, kTextType, kTextSpeed, kTextPart}, html);
    for (const MemorySlot_t& slot : array.slots) {
        html << "<tr><th>";
        PutLink(structures.Of(slot.structure), LabelOf(slot), html);
        html << "<td>";
        html.Text(Joined(slot.place.owner, ColumnOf(slot), ", ")) << "<td>";
        html.Text(StateText(slot)) << "<td>";
        html.Text(slot.size ? SizeText(*slot.size) : std::string()) << "<td>";
        html.Text(slot.type) << "<td>";
        html.Text(SpeedText(slot)) << "<td>";
        html.Text(Joined(slot.manufacturer, slot.part)) << "\n";
    }
    html << "</table></div></details>\n";
}

void PutArray(const MemoryArray_t& array, const ClStructures& structures, ClHtml& html) {
    const ClStructures::Entry_t* entry = structures.Of(array.structure);
    const bool isLost = array.structure.Type() != 16;
    const std::string handle = HandleText(array.structure.Handle());
    const std::string name = isLost ? std::string(TextOf(kTextMemoryLost)) : Filled(kTextMemoryArray, {handle});
    size_t used = 0;
    for (const MemorySlot_t& slot : array.slots) used += slot.state != MemorySlotState_t::kEmpty;
    html << "<div class=card><h3>";
    PutLink(isLost ? nullptr : entry, name, html);
    html << "</h3>\n<p>";
    std::string line = Joined(array.use, array.location, ", ");
    line = Joined(line, Filled(kTextMemorySlots, used, array.slots.size()), ", ");
    if (used != 0) line = Joined(line, Filled(kTextMemoryTotal, {SizeText(array.Installed())}), ", ");
    if (array.capacity.value_or(0) != 0)
        line = Joined(line, Filled(kTextMemoryMost, {SizeText(*array.capacity)}), ", ");
    html.Text(line) << "</p>\n";
    const std::vector<Owner_t> owners = OwnersOf(array);
    html << "<div class=slots>\n";
    for (const Owner_t& owner : owners) {
        html << "<div>";
        if (owners.size() > 1 || !owner.name.empty()) {
            html << "<h4>";
            html.Text(owner.name.empty() ? TextOf(kTextOtherSlots) : std::string_view(owner.name)) << "</h4>\n";
        }
        PutOwner(owner, html);
        html << "</div>\n";
    }
    html << "</div>\n";
    if (!array.slots.empty()) PutList(array, structures, name, html);
    html << "</div>\n";
}

// Of a table from before 2.1, which has no arrays.
void PutOldModules(const ClStructures& structures, ClHtml& html) {
    bool isFirst = true;
    for (const ClStructures::Entry_t& entry : structures.All()) {
        if (entry.structure.Type() != 6) continue;
        if (isFirst) html << "<div class=\"slots\">\n";
        isFirst = false;
        const ClValues values(entry.structure, structures.Options());
        const std::string label(values.Text("socket_designation"));
        const auto size = values.Number("installed_module_size");
        Box_t box = EmptyBox(label.empty() ? Filled(kTextUnnamedSlot, {HandleText(entry.structure.Handle())}) : label);
        if (size) {
            box.content = SizeText(*size);
            box.state = TextOf(kTextInstalled);
            box.shape = "full";
        }
        html << "<div>";
        PutPicture(box.label, {box}, html);
        html << "<p>";
        PutLink(&entry, WordsOf(box), html);
        html << "</p></div>\n";
    }
    if (!isFirst) html << "</div>\n";
}

}  // namespace

void WriteMemory(const Report_t&, const ClStructures& structures, ClHtml& html) {
    const std::vector<MemoryArray_t> arrays = MemoryArraysOf(structures.Shown(), structures.Options());
    const Summary_t& summary = structures.Summary();
    std::string total;
    if (summary.memoryInstalled) total = Filled(kTextMemoryTotal, {SizeText(*summary.memoryInstalled)});
    if (summary.memoryMaximum) total = Joined(total, Filled(kTextMemoryMost, {SizeText(*summary.memoryMaximum)}), ", ");
    if (!total.empty()) {
        html << "<p>";
        html.Text(total) << "</p>\n";
    }
    if (arrays.empty()) {
        PutOldModules(structures, html);
        return;
    }
    html << "<div class=cards>\n";
    for (const MemoryArray_t& array : arrays) PutArray(array, structures, html);
    html << "</div>\n";
}
