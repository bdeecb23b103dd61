#include <charconv>
#include <string_view>

#include "core/items/qv_item.h"

namespace qv {

namespace {

template <class T>
std::string number(T value) {
  char text[64];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string escaped(std::string_view text) {
  std::string html;
  for (const char c : text) {
    switch (c) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      default:
        html += c;
    }
  }
  return html;
}

std::string vector_text(const qv_3dvector& v) {
  return number(v.x) + " " + number(v.y) + " " + number(v.z);
}

std::string label_text(const qv_param& param, int index) {
  const qv_list<std::string>* labels = param.get_labels();
  return labels != nullptr && index >= 0 && index < labels->get_count() ? (*labels)[index]
                                                                        : number(index);
}

template <class List, class To_text>
std::string list_text(const List& list, To_text to_text) {
  std::string text;
  for (int i = 0; i < list.get_count(); ++i) {
    if (i > 0) text += ", ";
    text += to_text(list[i]);
  }
  return text;
}

std::string item_text(qv_item* item) {
  return item == nullptr ? "" : item->get_name();
}

std::string value_text(const qv_param& param) {
  switch (param.get_param_type()) {
    case qv_param::type_float:
      return number(param.get_float());
    case qv_param::type_int:
      return number(param.get_int());
    case qv_param::type_enum:
      return label_text(param, param.get_int());
    case qv_param::type_bool:
      return param.get_bool() ? "true" : "false";
    case qv_param::type_3dvector:
      return vector_text(param.get_3dvector());
    case qv_param::type_color: {
      const qv_color& c = param.get_color();
      return number(c.r) + " " + number(c.g) + " " + number(c.b) + " " + number(c.a);
    }
    case qv_param::type_matrix: {
      std::string text;
      for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
          if (!text.empty()) text += " ";
          text += number(param.get_matrix().get(row, column));
        }
      }
      return text;
    }
    case qv_param::type_string:
      return param.get_string();
    case qv_param::type_item:
      return item_text(param.get_item());
    case qv_param::type_float_list:
      return list_text(param.get_float_list(), number<float>);
    case qv_param::type_unsigned_list:
      return list_text(param.get_unsigned_list(), number<unsigned int>);
    case qv_param::type_int_list:
      return list_text(param.get_int_list(), number<int>);
    case qv_param::type_enum_list:
      return list_text(param.get_int_list(),
                       [&param](int index) { return label_text(param, index); });
    case qv_param::type_3dvector_list:
      return list_text(param.get_3dvector_list(), vector_text);
    case qv_param::type_string_list:
      return list_text(param.get_string_list(), [](const std::string& text) { return text; });
    case qv_param::type_item_list:
      return list_text(param.get_item_list(), item_text);
  }
  return "";
}

}  // namespace

std::string qv_item::get_html_information() {
  std::string html = "<h2>" + escaped(get_name()) + "</h2><table width=100% border=0>";
  const auto row = [&html](std::string_view label, std::string_view value) {
    html += "<tr><td><b>" + escaped(label) + "</b></td><td>" + escaped(value) + "</td></tr>";
  };
  row("type", type_->get_name());
  for (int i = 0; i < get_param_count(); ++i) {
    row(get_param(i)->get_name(), value_text(*get_param(i)));
  }
  return html + "</table>";
}

std::string qv_item::get_txt_information() {
  std::string text = "name: " + get_name() + "\ntype: " + type_->get_name() + "\n";
  for (int i = 0; i < get_param_count(); ++i) {
    text += get_param(i)->get_name() + ": " + value_text(*get_param(i)) + "\n";
  }
  return text;
}

std::string qv_item::get_html_link() {
  return "<a href=\"item:" + escaped(get_unique_id()) + "\">" + escaped(get_name()) + "</a>";
}

}  // namespace qv
