// The five ONVIF services of this device in gSOAP's interface language, one file per namespace. soapcpp2 makes the
// binding classes out of them; sources include the generated soap<Class>.h of the services that they use, or soapH.h.
//
// The names, the order and the optionality of types, members and operations are those that wsdl2h gives for the published
// WSDLs (options: DOM for xs:any, prefix tr2), so that sources compile against either. What differs, and why:
// - There is no common base xsd__anyType and no soap member: nothing needs the run-time types, and without them the code
//   is a fraction.
// - Types hold only the members that this device reads or writes. gSOAP skips content that it does not know, so any
//   ignored content is accepted: features that this device lacks (PTZ, imaging, audio), extensions, and the messages of
//   operations that it does not serve.
// - Operations have no SOAP action: the element in the body tells which one is called.
// - gSOAP writes a required pointer that is null as an empty element. Members that this device leaves out although the
//   schema requires them are therefore optional; each says so.
// - The type of the element tt:Message has the name tt__Message besides _tt__Message.

#import "builtin.h"
#import "addressing.h"
#import "schema.h"
#import "device.h"
#import "media.h"
#import "media2.h"
#import "events.h"
#import "analytics.h"
#import "onvif_operations.h"

// Namespaces that occur only in values and in DOM content get into the namespace table by a type of their own.

//gsoap ter schema namespace: http://www.onvif.org/ver10/error

/// A subcode of a fault.
typedef std::string ter__Subcode;

//gsoap tns1 schema namespace: http://www.onvif.org/ver10/topics

/// A topic expression.
typedef std::string tns1__Topic;
