/* Numbers of resources, for the resource compiler and the program. Dialogs and controls have names, see quenlar.rc. */
#ifndef QUENLAR_FORMS_WIN32_RESOURCE_H
#define QUENLAR_FORMS_WIN32_RESOURCE_H

#define IDI_QUENLAR 1

#endif
