#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace qv {

/// What accounts for every element of a model file that a reader is meant to understand, so that
/// nothing is lost silently.
///
/// Each element has one entry: what it is, its id, what became of it, why in words, and the area
/// concerned. Areas of source surfaces are in balance with the areas of the walls made from them
/// (`get_balance`).
class qv_import_ledger {
 public:
  enum class kind : int {
    space,
    surface,
    opening,
    window_type,
    construction,
    layer,
    material,
    zone,
    /// Of a file of triangles.
    object
  };
  enum class outcome : int {
    /// Taken over as the file says it.
    kept,
    /// Taken over with a correction; the reason names it.
    repaired,
    /// Said by another element too, whose item stands for both; the reason names the other.
    merged,
    /// Not taken over.
    dropped,
    /// Understood by a later version; nothing was made from it.
    not_read
  };
  static constexpr int kind_count = 9;
  static constexpr int outcome_count = 5;

  /// "Space", "Surface", "Opening", "WindowType", "Construction", "Layer", "Material", "Zone": the
  /// element names of the file format; "Object".
  static const char* get_kind_name(kind value);
  /// "kept", "repaired", "merged", "dropped", "not read yet".
  static const char* get_outcome_name(outcome value);

  struct entry {
    kind what = kind::space;
    std::string id;
    outcome result = outcome::kept;
    std::string reason;
    /// m²: of a surface or opening the area of its polygon in the file, of a space its stated floor
    /// area; 0 for what has none or when it is not known.
    double area = 0;
    /// Line in the file, from 1; 0 when not known.
    std::size_t line = 0;
    /// m²: what was cut off an opening that was taken over.
    double cut = 0;
  };

  /// Adds an entry and returns its position, by which `amend` finds it again.
  std::size_t add(entry element);
  /// Changes the outcome of an entry to `result` unless it is further from "kept" already (kept,
  /// repaired, merged, dropped), and adds `reason` to its reasons, separated by "; ". A reason that
  /// the entry gives already is not repeated.
  void amend(std::size_t position, outcome result, const std::string& reason);

  /// Sets the area of an entry once it is known, m².
  void set_area(std::size_t position, double area) { entries_.at(position).area = area; }

  /// Sets what was cut off an opening, m².
  void set_cut(std::size_t position, double area) { entries_.at(position).cut = area; }

  /// Sets the line of an entry.
  void set_line(std::size_t position, std::size_t line) { entries_.at(position).line = line; }

  /// In the order of the file within each kind.
  const std::vector<entry>& get_entries() const { return entries_; }
  /// Number of entries of a kind with an outcome.
  std::size_t get_count(kind what, outcome result) const;
  /// Number of entries of a kind.
  std::size_t get_count(kind what) const;
  /// Sum of the areas of the entries of a kind with an outcome, m².
  double get_area(kind what, outcome result) const;
  /// Sum of the areas of the entries of a kind, m².
  double get_area(kind what) const;

  /// Counts the area of a wall item made from a source surface, computed from the item's own
  /// polygon; `shades_only` when the wall bounds no space.
  void add_wall_area(double area, bool shades_only);

  /// Counts the area of an object made from a source surface, as for a wall.
  void add_object_area(double area) { objects_ += area; }

  /// Counts the area of an opening item, computed from the item's own polygon.
  void add_opening_area(double area) { openings_ += area; }

  /// Where the area of the source surfaces went, m².
  struct area_balance {
    /// Of all Surface entries.
    double source = 0;
    /// Of the walls made, from the walls' own polygons.
    double walls = 0;
    /// Of those among the walls that bound no space.
    double shading = 0;
    /// Of the objects made, shades and columns.
    double objects = 0;
    /// Of surfaces that another surface's wall stands for.
    double merged = 0;
    double dropped = 0;

    /// (walls + objects + merged + dropped − source) / source; 0 when both sides are 0.
    double get_relative_error() const;
    /// True when the error is at most `largest_relative_error`.
    bool is_balanced() const;
  };
  /// What rounding of single-precision coordinates may leave between the two sides.
  static constexpr double largest_relative_error = 1e-6;

  area_balance get_balance() const;

  /// Where the area of the source openings went, m².
  struct opening_balance {
    /// Of all Opening entries.
    double source = 0;
    /// Of the openings made, from their own polygons.
    double openings = 0;
    /// Of openings that another opening of the same wall says as well.
    double merged = 0;
    double dropped = 0;
    /// Cut off openings that were taken over.
    double cut = 0;

    /// (openings + merged + dropped + cut − source) / source; 0 when both sides are 0.
    double get_relative_error() const;
    bool is_balanced() const;
  };
  /// What single precision may leave of an opening's area, its sides being shorter than a wall's.
  static constexpr double largest_opening_error = 1e-5;

  opening_balance get_opening_balance() const;

 private:
  std::vector<entry> entries_;
  double walls_ = 0;
  double shading_ = 0;
  double objects_ = 0;
  double openings_ = 0;
};

}  // namespace qv
