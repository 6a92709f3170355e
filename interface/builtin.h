// What the definitions of all namespaces share: XML Schema's types as C++ types, xs:any content as a DOM, and the message
// of an operation that is not served.


#import "dom.h"

#include <vector>
template <class T> class std::vector;

//gsoap xsd schema namespace: http://www.w3.org/2001/XMLSchema

typedef std::string xsd__anySimpleType;
typedef std::string xsd__anyURI;
typedef std::string xsd__duration;
typedef std::string xsd__integer;
typedef std::string xsd__QName;
typedef std::string xsd__token;

/// Octets; __ptr points into the context. id, type and options name an attachment and stay null.
class xsd__base64Binary
{ public:
    unsigned char* __ptr;
    int            __size;
    char*          id;
    char*          type;
    char*          options;
};
