#include "forms/win32/dialogs.h"

#include "forms/win32/resource.h"

namespace quenlar {
namespace {

constexpr ui::Anchor kMainAnchors[] = {
    {IDC_CMBURL, 0, 100, 0, 0},    {IDC_CMDEXTRACT, 100, 0, 0, 0}, {IDC_TXTSEARCH, 100, 0, 0, 0},
    {IDC_LSTMAIL, 0, 100, 0, 100}, {IDC_CMDEXPORT, 100, 0, 0, 0},  {IDC_CMDDELETE, 100, 0, 0, 0},
    {IDC_CMDOPTION, 100, 0, 0, 0}, {IDC_CMDTOOL, 100, 0, 0, 0},    {IDC_CMDHIDE, 100, 0, 0, 0},
};

constexpr ui::Anchor kMergeToolAnchors[] = {
    {IDC_LSTBOOK, 0, 50, 0, 100},     {IDC_CMDOPEN, 0, 0, 100, 0},   {IDC_CMDDELETE, 0, 0, 100, 0},
    {IDC_CMDDELETEALL, 0, 0, 100, 0}, {IDC_LBLADDRESS, 50, 0, 0, 0}, {IDC_LSTADDRESS, 50, 50, 0, 100},
    {IDC_CMDEXTRACT, 50, 0, 100, 0},  {IDC_CMDCLEAR, 50, 0, 100, 0}, {IDC_CMDSAVE, 50, 0, 100, 0},
    {IDOK, 100, 0, 100, 0},
};

constexpr ui::Page kOptionPages[] = {
    {"picSearch", IDD_OPTION_SEARCH}, {"picExport", IDD_OPTION_EXPORT}, {"picFilter", IDD_OPTION_FILTER}};

constexpr ui::Dialog kDialogs[] = {
    {"frmExtract", IDD_EXTRACT, false, {602, 402}, {960, 600}, kMainAnchors, {}},
    {"frmOption", IDD_OPTION, true, {}, {}, {}, kOptionPages},
    {"frmEmailMergeTool", IDD_MERGE_TOOL, true, {}, {}, kMergeToolAnchors, {}},
    {"frmDialog", IDD_UPGRADE, false, {}, {}, {}, {}},
    {"frmAbout", IDD_ABOUT, false, {}, {}, {}, {}},
    {"frmHelp", IDD_HELP, false, {}, {}, {}, {}},
};

constexpr ui::ControlNumber kControls[] = {
    {"cmdOK", IDOK},
    // frmExtract
    {"cmbURL", IDC_CMBURL},
    {"cmdExtract", IDC_CMDEXTRACT},
    {"cmdExport", IDC_CMDEXPORT},
    {"cmdDelete", IDC_CMDDELETE},
    {"cmdOption", IDC_CMDOPTION},
    {"cmdTool", IDC_CMDTOOL},
    {"cmdHide", IDC_CMDHIDE},
    {"lstMail", IDC_LSTMAIL},
    {"stsExtract", IDC_STSEXTRACT},
    {"txtSearch", IDC_TXTSEARCH},
    // frmOption
    {"tabOption", IDC_TABOPTION},
    {"cmbSearch", IDC_CMBSEARCH},
    {"chkCorrelation", IDC_CHKCORRELATION},
    {"cmbSave", IDC_CMBSAVE},
    {"txtStopNumber", IDC_TXTSTOPNUMBER},
    {"optEmailAddress", IDC_OPTEMAILADDRESS},
    {"optAllInfo", IDC_OPTALLINFO},
    {"chkRemoveFilter", IDC_CHKREMOVEFILTER},
    {"txtRemoveFilter", IDC_TXTREMOVEFILTER},
    {"chkExtractFilter", IDC_CHKEXTRACTFILTER},
    {"txtExtractFilter", IDC_TXTEXTRACTFILTER},
    // frmEmailMergeTool
    {"lstBook", IDC_LSTBOOK},
    {"lstAddress", IDC_LSTADDRESS},
    {"cmdOpen", IDC_CMDOPEN},
    {"cmdDeleteAll", IDC_CMDDELETEALL},
    {"cmdClear", IDC_CMDCLEAR},
    {"cmdSave", IDC_CMDSAVE},
    // frmDialog
    {"lblVersion", IDC_LBLVERSION},
    {"optUpgrade0", IDC_OPTUPGRADE0},
    {"optUpgrade1", IDC_OPTUPGRADE1},
    {"txtDumb", IDC_TXTDUMB},
    // frmAbout, frmHelp
    {"picMark", IDC_PICMARK},
    {"lblSoftwareVersion", IDC_LBLSOFTWAREVERSION},
    {"lblNote", IDC_LBLNOTE},
    {"lblWebPage", IDC_LBLWEBPAGE},
    {"Line1", IDC_LINE1},
    {"Line2", IDC_LINE2},
    {"Label1", IDC_LABEL1},
    {"Label2", IDC_LABEL2},
    {"lblHelp", IDC_LBLHELP},
};

}  // namespace

ui::Resources ProgramResources(HINSTANCE program) { return {program, IDI_QUENLAR, kDialogs, kControls}; }

}  // namespace quenlar
