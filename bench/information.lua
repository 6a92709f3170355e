-- For wrk: GetDeviceInformation. Arguments: keep or close, what becomes of a connection after its response; then, to log
-- in, realm, nonce and password of "admin". One nonce serves all connections, with a count that grows.
local ffi = require('ffi')
ffi.cdef('unsigned char *MD5(const unsigned char *text, size_t size, unsigned char *digest);') -- of the OpenSSL that wrk uses

local path = '/onvif/device_service'
local cnonce = 'c0ffee'
local digest = ffi.new('unsigned char[16]')
local realm, nonce, ha1, ha2
local count = 0

local function md5(text)
    ffi.C.MD5(text, #text, digest)
    local hexadecimal = {}
    for i = 0, 15 do hexadecimal[i + 1] = string.format('%02x', digest[i]) end
    return table.concat(hexadecimal)
end

function init(arguments)
    wrk.method = 'POST'
    wrk.path = path
    wrk.headers['Content-Type'] = 'application/soap+xml; charset=utf-8'
    wrk.body = '<?xml version="1.0" encoding="UTF-8"?><s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope">' ..
        '<s:Body><GetDeviceInformation xmlns="http://www.onvif.org/ver10/device/wsdl"/></s:Body></s:Envelope>'
    if arguments[1] == 'close' then wrk.headers['Connection'] = 'close' end
    if arguments[2] then
        realm, nonce = arguments[2], arguments[3]
        ha1 = md5('admin:' .. realm .. ':' .. arguments[4])
        ha2 = md5('POST:' .. path)
    end
end

local plain
function request()
    if not nonce then
        plain = plain or wrk.format()
        return plain
    end
    count = count + 1
    local nc = string.format('%08x', count)
    local response = md5(table.concat({ha1, nonce, nc, cnonce, 'auth', ha2}, ':'))
    wrk.headers['Authorization'] = 'Digest username="admin", realm="' .. realm .. '", nonce="' .. nonce .. '", uri="' .. path ..
        '", qop=auth, nc=' .. nc .. ', cnonce="' .. cnonce .. '", response="' .. response .. '"'
    return wrk.format()
end
