// gSOAP's HTTP digest plugin, changed in two ways by the names that it uses.
#include <httpda.h>

#include <ctime>

// It keeps every challenge in a list that is only consulted by its own password check, which is not used here. With a
// lifetime of -1 instead of 600 seconds the list is emptied whenever it is cleaned up, and with a clock that goes in
// steps of ten seconds, at multiples of which it cleans up, that is before every challenge: one is kept at a time.
#undef HTTP_DA_SESSION_TIMEOUT
#define HTTP_DA_SESSION_TIMEOUT (-1)
#define time(pointer) (time(pointer) / 10 * 10)

// Its only variable of this type is the counter in the nonces, which all threads count without a lock. Each has its own
// this way; the random number in every nonce tells those of two threads apart.
#define short thread_local short

#include "httpda.c"
