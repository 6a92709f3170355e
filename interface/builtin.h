// Shared by all namespaces: XML Schema's types as C++ types, and xs:any content as a DOM.

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
