#!/bin/sh
# tls_server.sh PORT CONNECTIONS: a TLS server on the loopback address with a certificate of its own, in the current
# folder. It answers the first request with the file "reply" and ends after that many connections, or after a while.
# Leaves "cert.der", its certificate, and "received", what clients have sent through TLS.
exec >/dev/null 2>&1 </dev/null
openssl req -x509 -newkey rsa:2048 -nodes -keyout key.pem -out cert.pem -days 2 -subj "/CN=localhost" \
    -addext "subjectAltName=DNS:localhost" || exit 1
openssl x509 -in cert.pem -outform DER -out cert.new && : >received && mv cert.new cert.der || exit 1
{
    tries=0
    until grep -q '"temperature"' received || [ "$tries" -gt 600 ]; do
        tries=$((tries + 1))
        sleep 0.05
    done
    cat reply
    sleep 1
} | timeout 30 openssl s_server -accept "127.0.0.1:$1" -cert cert.pem -key key.pem -quiet -naccept "$2" >received
