// gSOAP's HTTP digest plugin, changed in two ways by the names that it uses.
#include <httpda.h>

// It keeps every challenge in a list that is only consulted by its own password check, which is not used here. With a
// lifetime of 0 instead of 600 seconds the list is emptied whenever it is cleaned up.
#undef HTTP_DA_SESSION_TIMEOUT
#define HTTP_DA_SESSION_TIMEOUT (0)

// Its only variable of this type is the counter in the nonces, which all threads count without a lock. Each has its own
// this way; the random number in every nonce tells those of two threads apart.
#define short thread_local short

#include "httpda.c"
