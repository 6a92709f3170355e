// gSOAP's engine refers to one global table of namespaces; the tables of all five services are the same.
#include "DeviceBinding.nsmap"
