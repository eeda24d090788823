Host=a=b
Port=10000
