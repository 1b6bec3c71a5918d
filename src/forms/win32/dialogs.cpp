#include "forms/win32/dialogs.h"

#include "forms/win32/resource.h"

namespace quenlar {
namespace {

constexpr ui::Dialog kDialogs[] = {
    {.form = "frmExtract", .first = {960, 600}}, {.form = "frmOption", .owned = true},
    {.form = "frmWeb", .owned = true},           {.form = "frmSightings", .owned = true, .wider = 264},
    {.form = "frmWhy", .owned = true},           {.form = "frmEmailMergeTool", .owned = true},
};

}  // namespace

ui::Resources ProgramResources(HINSTANCE program) { return {program, IDI_QUENLAR, kDialogs}; }

}  // namespace quenlar
