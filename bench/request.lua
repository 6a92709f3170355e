-- For wrk: GetSystemDateAndTime over one keep-alive connection after the other.
wrk.method = "POST"
wrk.headers["Content-Type"] = "application/soap+xml; charset=utf-8"
wrk.body = '<?xml version="1.0" encoding="UTF-8"?><s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope">' ..
    '<s:Body><GetSystemDateAndTime xmlns="http://www.onvif.org/ver10/device/wsdl"/></s:Body></s:Envelope>'
