/* How a dialog of the resources is written, for the resource compiler and the program.

   A dialog has the name of its form: "frmAbout DIALOGEX 0, 0, 360, 240". A dialog with the name of a panel is a page of
   the form's tab strip. All places and sizes are pixels at 96 dots per inch, not dialog units, which depend on a font
   that differs between systems; the program scales them itself.

   The text of an item is the name of a control of the form: CONTROL "cmdOK", NAMED, ... Its caption comes from the
   form. The number IDC_STATIC instead of NAMED makes a label that no form knows; its text is shown as it stands.
   Another number stays: the button that closes a window has the system's number IDOK. Items stand in tab order. The
   last number of an item says how it follows the size of its window: MOVE_X(100) stays at the right edge, GROW_X(50) |
   MOVE_Y(100) takes half of what the window grows and stays at the foot. */
#ifndef QUENLAR_UI_WIN32_DIALOG_ITEMS_H
#define QUENLAR_UI_WIN32_DIALOG_ITEMS_H

#ifndef IDC_STATIC
#define IDC_STATIC -1
#endif

/* The program makes the item's number of its name, see ControlNumber. */
#define NAMED 0

/* Percent of what the window is wider and higher than in its template. The resource compiler cannot shift. */
#define MOVE_X(percent) (percent)
#define GROW_X(percent) ((percent)*256)
#define MOVE_Y(percent) ((percent)*65536)
#define GROW_Y(percent) ((percent)*16777216)

#endif
