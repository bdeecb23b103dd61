#include "app/check/qv_finding.h"

namespace qv {
namespace {

constexpr qv_check_code codes[] = {
    {"wall-without-space", "a wall, floor or roof that bounds no space"},
    {"space-without-surfaces", "a space that no surface bounds"},
    {"space-without-floor", "a space with nothing under it"},
    {"space-without-ceiling", "a space with nothing over it"},
    {"leaking-space", "a space whose surfaces leave a hole"},
    {"reversed-normal", "a surface whose polygon looks into its first space"},
    {"unclear-orientation", "a surface of which rays cannot tell on which side its space lies"},
    {"overlapping-walls", "surfaces that lie on one another"},
    {"unshared-wall", "two outer walls back to back where one wall between two spaces should be"},
    {"opening-outside-wall", "an opening that reaches beyond its wall"},
    {"composition-without-layers", "a construction that is a name only"},
    {"impossible-material", "a material with a value that no substance has"},
    {"area-not-as-stated", "a space whose floor area is far from what the file states"},
    {"volume-not-as-stated", "a space whose volume is far from what the file states"},
    {"polygon-not-plane", "a surface whose corners do not lie in a plane"},
    {"sliver-polygon", "a surface too thin to be one"},
};

}  // namespace

std::span<const qv_check_code> qv_check_codes() {
  return codes;
}

}  // namespace qv
