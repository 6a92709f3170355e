#!/bin/sh
# Runs a command on a machine of its own as far as the network goes, which has the address 10.9.0.1 on an Ethernet of its own.
# Status 77 where the kernel does not allow that.
PATH=$PATH:/sbin:/usr/sbin
unshare --net true || exit 77
exec unshare --net sh -ec '
    ip link set lo up
    ip link add lan type veth peer name wall
    ip link set lan up
    ip link set wall up
    ip address add 10.9.0.1/24 dev lan
    ip route add default dev lan
    exec "$@"' sh "$@"
