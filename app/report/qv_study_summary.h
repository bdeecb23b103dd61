#pragma once

#include <string>

#include "app/study/qv_study_results.h"

namespace qv {

/// The study on a page of text: buildings; spaces with measured and stated area and volume; walls
/// by contact type with their mean U; what became of the elements of the file. Long lists are cut
/// and say where the rest stands.
std::string qv_study_summary(const qv_study_results& study);

/// Most spaces that the page lists.
inline constexpr std::size_t qv_summary_space_count = 60;
/// Most reasons that the page lists.
inline constexpr std::size_t qv_summary_reason_count = 30;

/// The import part of the page: how many elements of each kind were kept, repaired, merged,
/// dropped; the balance of areas; the reasons.
std::string qv_ledger_summary(const qv_study_ledger& ledger);

}  // namespace qv
