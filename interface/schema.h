// ONVIF schema types (tt): the common ones, and the parts that hold the rest.
// Source: ONVIF Core Specification, onvif.xsd.

#import "builtin.h"
#import "addressing.h"

//gsoap tt schema namespace:     http://www.onvif.org/ver10/schema
//gsoap tt schema elementForm:   qualified
//gsoap tt schema attributeForm: unqualified

typedef std::string tt__ReferenceToken;
typedef std::string tt__Name;
typedef std::string tt__StringAttrList;

/// Every request that this device does not read and every response that says no more than that the operation succeeded.
class tt__EmptyMessage
{ public:
};

// Common parts

/// Anything that a token names.
class tt__DeviceEntity
{ public:
    @ tt__ReferenceToken token 1;
};

/// Any configuration of a media profile.
class tt__ConfigurationEntity
{ public:
    tt__Name             Name     1;
    int                  UseCount 1;
    @ tt__ReferenceToken token    1;
};

class tt__OnvifVersion
{ public:
    int Major 1;
    int Minor 1;
};

class tt__IntRange
{ public:
    int Min 1;
    int Max 1;
};

class tt__FloatRange
{ public:
    float Min 1;
    float Max 1;
};

class tt__IntRectangle
{ public:
    @ int x      1;
    @ int y      1;
    @ int width  1;
    @ int height 1;
};

class tt__IntRectangleRange
{ public:
    tt__IntRange* XRange      1;
    tt__IntRange* YRange      1;
    tt__IntRange* WidthRange  1;
    tt__IntRange* HeightRange 1;
};

#import "schema_device.h"
#import "schema_message.h"
#import "schema_media.h"
#import "schema_scene.h"
