#include <array>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <limits>
#include <memory>

#include "app/commands/qv_command_line.h"
#include "app/commands/qv_commands.h"
#include "app/commands/qv_context_option.h"
#include "app/commands/qv_interrupt.h"
#include "app/commands/qv_progress.h"
#include "app/pictures/qv_canvas.h"
#include "app/pictures/qv_picture.h"
#include "app/readers/qv_gbxml_reader.h"
#include "app/readers/qv_input_error.h"
#include "app/report/qv_output_folder.h"
#include "app/study/qv_study.h"
#include "bim/envelope/qvi_wall.h"
#include "core/shapes/qvi_polygon.h"

namespace qv {
namespace {

struct picture_arguments {
  std::string model;
  std::string file;
  std::vector<std::string> selected;
  std::string hovered;
  bool no_legend = false;
  std::optional<double> north;
  qv_context_options context;
  qv_picture_options picture;
};

constexpr std::array<qv_choice<qv_picture_view>, 7> views = {
    {{"iso", qv_picture_view::iso},
     {"north", qv_picture_view::north},
     {"east", qv_picture_view::east},
     {"south", qv_picture_view::south},
     {"west", qv_picture_view::west},
     {"plan", qv_picture_view::plan},
     {"perspective", qv_picture_view::perspective}}};

constexpr std::array<qv_choice<qv_picture_color>, 7> colors = {
    {{"contact-type", qv_picture_color::contact_type},
     {"u", qv_picture_color::u},
     {"zone", qv_picture_color::zone},
     {"storey", qv_picture_color::storey},
     {"type", qv_picture_color::type},
     {"material", qv_picture_color::material},
     {"thermal-bridges", qv_picture_color::thermal_bridges}}};

// Understands "1280x800".
bool read_size(const std::string& text, int& width, int& height) {
  const char* const end = text.data() + text.size();
  const auto first = std::from_chars(text.data(), end, width);
  if (first.ec != std::errc() || first.ptr == end || *first.ptr != 'x') return false;
  const auto second = std::from_chars(first.ptr + 1, end, height);
  return second.ec == std::errc() && second.ptr == end;
}

// Puts the size into the options; says what is wrong with it.
std::string take_size(const std::string& text, qv_picture_options& options) {
  int width = 0;
  int height = 0;
  if (!read_size(text, width, height))
    return "\"" + text + "\" is no size; write it as WIDTHxHEIGHT, in pixels";
  const auto fits = [](int side) {
    return side >= qv_picture_options::smallest_side && side <= qv_frame_buffer::largest_side;
  };
  if (!fits(width) || !fits(height))
    return "\"" + text + "\": each side is " + std::to_string(qv_picture_options::smallest_side) +
           " to " + std::to_string(qv_frame_buffer::largest_side) + " pixels";
  // Sides are small enough for the product.
  if (width * height > qv_frame_buffer::largest_count)
    return "\"" + text + "\" has more than " + std::to_string(qv_frame_buffer::largest_count) +
           " pixels";
  options.width = width;
  options.height = height;
  return {};
}

// What is wrong with the name of a file that is to hold a PNG picture.
std::string complain_of_format(const std::string& file) {
  std::string extension = std::filesystem::path(file).extension().string();
  for (char& letter : extension)
    letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  if (extension.empty() || extension == ".png") return {};
  return "--out: \"" + file + "\" names no PNG file, which is what pictures are";
}

qv_item& find_item(const qv_picture_subject& subject, const std::string& id,
                   const std::string& model) {
  const auto found = subject.items_by_id.find(id);
  if (found != subject.items_by_id.end()) return *found->second;
  throw qv_input_error(qv_input_error::kind::bad_input, {model, 0, "", ""},
                       "has nothing with the id \"" + qv_one_line(id) + "\"",
                       "`qv study` lists ids in walls.csv, openings.csv, spaces.csv and "
                       "thermal_bridges.csv");
}

// The pointer rests on an item: of a wall, on its faces, which are what a view picks.
void hover(qv_item& item) {
  item.set_mouseover(true);
  if (!item.has_type("wall")) return;
  for (qvi_polygon* face : static_cast<const qvi_wall&>(item).get_drawn_faces())
    face->set_mouseover(true);
}

int run_picture(const picture_arguments& arguments) {
  const qv_interrupt interrupt;
  // Before the work, so that a wrong place, or a machine that cannot draw, is told at once.
  qv_output_file file(arguments.file, qv_read_files(arguments.model, arguments.context));
  qv_picture_maker maker;
  qv_picture picture;
  std::vector<std::string> context_notes;
  {
    qv_progress progress;
    const auto announce = progress.get_announcer();
    announce(1, 5, "reading the model");
    qv_gbxml_model model = qv_read_gbxml(arguments.model);
    context_notes = qv_add_context(model, arguments.context);
    qv_study_options options;
    options.north = arguments.north;
    const qv_model_findings findings = qv_compute_model(model, options, announce);
    qv_study_results study = qv_gather_study(model, findings);
    if (arguments.north) study.location.azimuth = arguments.north;
    announce(5, 5, "drawing the picture");
    const qv_picture_subject subject = qv_make_picture_subject(model, study);
    for (const std::string& id : arguments.selected)
      find_item(subject, id, arguments.model).set_selected(true);
    if (!arguments.hovered.empty()) hover(find_item(subject, arguments.hovered, arguments.model));
    picture = maker.draw(subject, arguments.picture, arguments.model);
    file.stage(qv_encode_png(picture.pixels));
  }
  file.commit();
  qv_print_notes(context_notes);
  std::string text;
  for (const std::string& note : picture.notes) text += "Note: " + note + "\n";
  qv_print(text + "Written to " + arguments.file + "\n");
  return qv_exit_success;
}

}  // namespace

void qv_add_picture_command(qv_command& program) {
  const auto arguments = std::make_shared<picture_arguments>();
  qv_picture_options& picture = arguments->picture;
  qv_command& command = program.add_command("picture", "Draw a picture of a gbXML model");
  command.add_model(arguments->model);
  command.add_out_file("The picture to write, a PNG file", arguments->file);
  command.add_choice("--view",
                     "Whence: from the south-west, square to a side of the model,\n"
                     "from above; with --storey, plan is cut through its rooms",
                     views, picture.view);
  command.add_choice("--color",
                     "What the colours tell: what walls separate, U values, the zone\n"
                     "or storey of the room behind, the type of element, its composition,\n"
                     "or thermal bridges as lines over a pale model",
                     colors, picture.color);
  command.add_list_option({"--select", "ID…",
                           "Show these as selected: walls, openings, rooms, zones, buildings,\n"
                           "compositions, thermal bridges, … by id"},
                          arguments->selected);
  command.add_option({"--hover", "ID", "Show this as under the pointer"}, arguments->hovered);
  command.add_number_option({"--storey", "N",
                             "Only the rooms of this storey, from 0 at the bottom,\n"
                             "without what lies over them"},
                            0, std::numeric_limits<int>::max(), "storey; the lowest is 0",
                            picture.storey);
  command.add_option({"--size", "WxH", "In pixels; 1280x800 unless given"},
                     [&picture](const std::string& text) { return take_size(text, picture); });
  command.add_flag("--no-legend", "Leave out title and legend", arguments->no_legend);
  command.add_north(arguments->north);
  qv_add_context_options(command, arguments->context);
  command.set_footer(
      "Examples:\n"
      "  qv picture house.xml --out house.png\n"
      "  qv picture house.xml --out south.png --view south --color u\n"
      "  qv picture house.xml --out plan.png --view plan --storey 0 --color zone\n"
      "  qv picture house.xml --out wall.png --select su-12 --hover op-3");
  command.set_check([arguments] { return complain_of_format(arguments->file); });
  command.set_action([arguments] {
    arguments->picture.with_key = !arguments->no_legend;
    return run_picture(*arguments);
  });
}

}  // namespace qv
