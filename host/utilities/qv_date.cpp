#include "utilities/qv_date.h"

#include <atomic>

namespace {

std::atomic<unsigned int> latest_date{0};

}  // namespace

unsigned int qv_get_new_date() {
  return latest_date.fetch_add(1) + 1;
}

unsigned int qv_get_date() {
  return latest_date.load();
}
