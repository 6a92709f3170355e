// gSOAP's HTTP digest plugin keeps every challenge in a list that is only consulted by its own password check, which is
// not used here. With a lifetime of 0 instead of 600 seconds the list is emptied whenever it is cleaned up.
#include <httpda.h>

#undef HTTP_DA_SESSION_TIMEOUT
#define HTTP_DA_SESSION_TIMEOUT (0)

#include "httpda.c"
