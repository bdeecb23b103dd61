#pragma once

/// Entry of the module: makes every item type of the building model known to the host.
extern "C" void qv_load_bim_items();
