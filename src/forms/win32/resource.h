/* Numbers of dialogs and controls, for the resource compiler and the program. A control's name in the forms and its
   number stand together in dialogs.cpp. */
#ifndef QUENLAR_FORMS_WIN32_RESOURCE_H
#define QUENLAR_FORMS_WIN32_RESOURCE_H

#ifndef IDC_STATIC
#define IDC_STATIC -1 /* a label that no form knows */
#endif

#define IDI_QUENLAR 1

#define IDD_EXTRACT 100
#define IDD_OPTION 101
#define IDD_OPTION_SEARCH 102
#define IDD_OPTION_EXPORT 103
#define IDD_OPTION_FILTER 104
#define IDD_MERGE_TOOL 105
#define IDD_UPGRADE 106
#define IDD_ABOUT 107
#define IDD_HELP 108

/* The buttons that close a window have the system's number for OK (1). */

#define IDC_CMBURL 1001
#define IDC_CMDEXTRACT 1002
#define IDC_CMDEXPORT 1003
#define IDC_CMDDELETE 1004
#define IDC_CMDOPTION 1005
#define IDC_CMDTOOL 1006
#define IDC_CMDHIDE 1007
#define IDC_LSTMAIL 1008
#define IDC_STSEXTRACT 1009
#define IDC_TXTSEARCH 1010

#define IDC_TABOPTION 1101
#define IDC_CMBSEARCH 1102
#define IDC_CHKCORRELATION 1103
#define IDC_CMBSAVE 1104
#define IDC_TXTSTOPNUMBER 1105
#define IDC_OPTEMAILADDRESS 1106
#define IDC_OPTALLINFO 1107
#define IDC_CHKREMOVEFILTER 1108
#define IDC_TXTREMOVEFILTER 1109
#define IDC_CHKEXTRACTFILTER 1110
#define IDC_TXTEXTRACTFILTER 1111

#define IDC_LSTBOOK 1201
#define IDC_LSTADDRESS 1202
#define IDC_CMDOPEN 1203
#define IDC_CMDDELETEALL 1204
#define IDC_CMDCLEAR 1205
#define IDC_CMDSAVE 1206
#define IDC_LBLADDRESS 1207

#define IDC_LBLVERSION 1301
#define IDC_OPTUPGRADE0 1302
#define IDC_OPTUPGRADE1 1303
#define IDC_TXTDUMB 1304

#define IDC_PICMARK 1401
#define IDC_LBLSOFTWAREVERSION 1402
#define IDC_LBLNOTE 1403
#define IDC_LBLWEBPAGE 1404
#define IDC_LINE1 1405
#define IDC_LINE2 1406
#define IDC_LABEL1 1407
#define IDC_LABEL2 1408
#define IDC_LBLHELP 1409

#endif
