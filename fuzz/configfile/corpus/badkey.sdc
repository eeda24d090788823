Host=1
Host=2
=empty key
